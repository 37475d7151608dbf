#include "cache/item_filters.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"

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

bool Item_Filters::Check_Filtered_Record(int node, int folder, std::int32_t item) {
  return errors_.Run("Check_Filtered_Record", [&] {
    const FolderData& record = records_[folder];
    if (item < 1 || item > record.Cache_Bound()) return false;
    const ItemData& data = record.Cached(item);
    if (data.ItemClass <= 0 || data.EntryID.empty()) return false;
    const bool passes = Check_Item(data.ItemClass, data.ItemDate, data.Subject, data.Unread);
    return passes && window_.trvFolders.Checked(node);
  });
}

bool Item_Filters::Check_Item(std::int32_t item_class, Date date, std::string_view subject, bool unread) {
  const bool d = Check_Date(date), s = Check_Subject(subject), t = Check_Type(item_class);
  return d && s && t && (!unread || window_.chkSelectUnread.Checked());
}

bool Item_Filters::Check_Type(std::int32_t item_class) {
  return errors_.Run("Check_Type", [&] {
    if (!window_.chkSelectType.Checked()) return true;
    return std::any_of(window_.chkType.begin(), window_.chkType.end(),
                       [&](const TypeBox& type) { return type.box.Checked() && type.index == item_class; });
  });
}

bool Item_Filters::Check_Date(Date item_date) {
  return errors_.Run("Check_Date", [&] {
    return !window_.chkSelectDate.Checked() || std::floor(item_date) <= window_.dtpCutoffDate.Value();
  });
}

bool Item_Filters::Check_Subject(std::string_view subject) {
  return errors_.Run("Check_Subject", [&] {
    if (!window_.chkSelectSubject.Checked()) return true;
    const std::string_view wanted = Trim_Right(window_.txtSelectSubject.Text());
    const std::string_view given = Trim_Right(subject);
    const bool word = window_.chkMatchWord.Checked();
    if (window_.chkMatchCase.Checked()) return word ? given == wanted : given.starts_with(wanted);
    const std::string_view text = Trim(wanted), in = Trim(given);
    return Begins_Ignoring_Case(in, text) && (!word || Begins_Ignoring_Case(text, in));
  });
}

Filter_State Item_Filters::State() const {
  const MainWindow& w = window_;
  Filter_State state;
  state.by_type = w.chkSelectType.Checked();
  state.by_date = w.chkSelectDate.Checked();
  state.by_subject = w.chkSelectSubject.Checked();
  state.unread_too = w.chkSelectUnread.Checked();
  state.match_case = state.by_subject && w.chkMatchCase.Checked();
  state.match_word = state.by_subject && w.chkMatchWord.Checked();
  if (state.by_type)
    for (std::size_t i = 0; i < state.types.size(); ++i) state.types[i] = w.chkType[i].box.Checked();
  if (state.by_date) state.cutoff = w.dtpCutoffDate.Value();
  if (state.by_subject) state.subject = w.txtSelectSubject.Text();
  return state;
}

void Item_Filters::Apply() {
  applied_ = State();
  Change_Filtered_Rows();
}

void Item_Filters::Filter_Changed() {
  window_.grdItems.Set_Redraw(false);
  Apply();
  Enable_Command_Buttons();
  window_.grdItems.Set_Redraw(true);
}

// A box that merely loses the focus must not touch the rows: their marks may have been set by hand.
void Item_Filters::Focus_Lost() {
  if (State() == applied_) return;
  window_.grdItems.Set_Redraw(false);
  Apply();
  window_.grdItems.Set_Redraw(true);
}

void Item_Filters::Wire() {
  window_.chkMatchCase.Click = [this] { errors_.Run("chkMatchCase_Click", [&] { Filter_Changed(); }); };
  window_.chkMatchWord.Click = [this] { errors_.Run("chkMatchWord_Click", [&] { Filter_Changed(); }); };
  window_.chkSelectUnread.Click = [this] { errors_.Run("chkSelectUnread_Click", [&] { Filter_Changed(); }); };
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
    Apply();
    Enable_Command_Buttons();
  });
}

}  // namespace tidyfold
