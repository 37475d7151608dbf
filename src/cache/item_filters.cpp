#include "cache/item_filters.h"

namespace tidyfold {

namespace {

constexpr int enter_key = 13;

}  // namespace

bool Check_Unread(Item& item, Error_Handler& errors) {
  return errors.Run("Check_Unread", [&] {
    bool unread = false;
    if (!errors.Try([&] { unread = item.UnRead(); })) {
      errors.error.Clear();
      unread = false;
    }
    return unread;
  });
}

bool Check_Flagged(Item& item, std::int32_t item_class, Error_Handler& errors) {
  return errors.Run("Check_Flagged", [&] {
    if (item_class != item_class::mail) return false;
    bool flagged = true;
    if (!errors.Try([&] { flagged = item.FlagStatus() == flag_status::marked; })) errors.error.Clear();
    return flagged;
  });
}

Item_Filter Read_Filter(const MainWindow& window) {
  Item_Filter filter;
  filter.by_type = window.chkSelectType.Checked();
  filter.by_date = window.chkSelectDate.Checked();
  filter.by_subject = window.chkSelectSubject.Checked();
  filter.unread_too = window.chkSelectUnread.Checked();
  filter.flagged_too = window.chkSelectFlagged.Checked();
  if (filter.by_type) {
    for (std::size_t i = 0; i < filter.types.size(); ++i)
      filter.types[i] = window.chkType[i].box.Checked() ? window.chkType[i].index : 0;
  }
  if (filter.by_date) filter.cutoff = window.dtpCutoffDate.Value();
  if (filter.by_subject) {
    filter.subject = window.txtSelectSubject.Text();
    filter.match_case = window.chkMatchCase.Checked();
    filter.match_word = window.chkMatchWord.Checked();
  }
  return filter;
}

void Item_Filters::Filter_Changed() {
  const No_Redraw no_redraw(window_.grdItems);
  in_force_.Set(Read_Filter(window_));
  view_.Change_Filtered_Rows();
}

// A box that merely loses the focus must not touch the rows.
void Item_Filters::Focus_Lost() {
  if (Read_Filter(window_) != in_force_.Filter()) Filter_Changed();
}

void Item_Filters::Wire() {
  window_.chkMatchCase.Click = [this] { errors_.Run("chkMatchCase_Click", [&] { Filter_Changed(); }); };
  window_.chkMatchWord.Click = [this] { errors_.Run("chkMatchWord_Click", [&] { Filter_Changed(); }); };
  window_.chkSelectUnread.Click = [this] { errors_.Run("chkSelectUnread_Click", [&] { Filter_Changed(); }); };
  window_.chkSelectFlagged.Click = [this] {
    errors_.Run("chkSelectFlagged_Click", [&] { Filter_Changed(); });
  };
  for (TypeBox& type : window_.chkType)
    type.box.Click = [this] { errors_.Run("chkType_Click", [&] { Filter_Changed(); }); };
  window_.dtpCutoffDate.CloseUp = [this] { errors_.Run("dtpCutoffDate_CloseUp", [&] { Filter_Changed(); }); };
  window_.dtpCutoffDate.KeyDown = [this](int key_code) {
    errors_.Run("dtpCutoffDate_KeyDown", [&] {
      if (key_code == enter_key) Filter_Changed();
    });
  };
  window_.dtpCutoffDate.Validate = [this] { errors_.Run("dtpCutoffDate_Validate", [&] { Focus_Lost(); }); };
  window_.txtSelectSubject.KeyPress = [this](int key_code) {
    errors_.Run("txtSelectSubject_KeyPress", [&] {
      if (key_code == enter_key) Filter_Changed();
    });
  };
  window_.txtSelectSubject.Validate = [this] {
    errors_.Run("txtSelectSubject_Validate", [&] { Focus_Lost(); });
  };
  window_.chkSelectDate.Click = [this] { chkSelectDate_Click(); };
  window_.chkSelectSubject.Click = [this] { chkSelectSubject_Click(); };
  window_.chkSelectType.Click = [this] { chkSelectType_Click(); };
}

void Item_Filters::chkSelectDate_Click() {
  errors_.Run("chkSelectDate_Click", [&] {
    window_.dtpCutoffDate.Set_Enabled(window_.chkSelectDate.Checked());
    Filter_Changed();
  });
}

void Item_Filters::chkSelectSubject_Click() {
  errors_.Run("chkSelectSubject_Click", [&] {
    const bool on = window_.chkSelectSubject.Checked();
    window_.txtSelectSubject.Set_Enabled(on);
    window_.chkMatchCase.Set_Enabled(on);
    window_.chkMatchWord.Set_Enabled(on);
    window_.txtSelectSubject.Set_Back_Colour(on ? system_window_background
                                                : window_.frmRemoveItems.Back_Colour());
    Filter_Changed();
  });
}

void Item_Filters::chkSelectType_Click() {
  errors_.Run("chkSelectType_Click", [&] {
    for (TypeBox& type : window_.chkType) type.box.Set_Enabled(window_.chkSelectType.Checked());
    Filter_Changed();
  });
}

}  // namespace tidyfold
