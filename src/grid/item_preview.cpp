#include "grid/item_preview.h"

#include <utility>

#include "base/dates.h"
#include "base/size_text.h"
#include "base/text.h"
#include "grid/grid_columns.h"

namespace tidyfold {

namespace {

// More than anybody reads beside a list.
constexpr std::size_t most_characters = 20000;

}  // namespace

void Item_Preview::Wire() {
  window_.mnuPreview.Click = [this] { mnuPreview_Click(); };
  window_.grdItems.Row_Shown = [this, before = window_.grdItems.Row_Shown] {
    Raise(before);
    Follow_Row();
  };
  window_.grdItems.Row_Rests = [this] { Show_Text(); };
  window_.txtPreview.Set_Visible(false);
}

void Item_Preview::mnuPreview_Click() {
  errors_.Run("mnuPreview_Click", [&] {
    window_.mnuPreview.Set_Checked(!window_.mnuPreview.Checked());
    window_.txtPreview.Set_Visible(Is_On());
    shown_id_.clear();
    Follow_Row();
    Show_Text();
  });
}

std::string Item_Preview::Known(const GridRow& row) const {
  if (!records_.Has(row.row_data)) return {};
  const FolderData& record = records_[row.row_data];
  if (row.item < 1 || row.item > record.Cache_Bound()) return {};
  const ItemData& item = record.Cached(row.item);
  if (item.ItemClass == ItemData::deleted) return {};
  std::string text = item.Subject.empty() ? "(no subject)" : item.Subject;
  text += "\r\n" + Type_Name(item.ItemClass);
  if (item.ItemClass == item_class::mail && !item.SenderOrText.empty()) text += " from " + item.SenderOrText;
  if (item.ItemDate != no_date) text += ", " + Format_Date(item.ItemDate);
  if (item.Size > 0) text += ", " + Format_Size(item.Size);
  return text + "\r\nin " + record.FolderName;
}

void Item_Preview::Follow_Row() {
  errors_.Run("Follow_Row", [&] {
    if (!Is_On()) return;
    const FlexGrid& grid = window_.grdItems;
    std::string id, known;
    if (grid.Has_Row()) {
      const GridRow& row = grid.Row_At(grid.Row());
      known = Known(row);
      if (!known.empty()) id = Row_Key(row.row_data, 1) + records_[row.row_data].Cached(row.item).EntryID;
    }
    if (id == shown_id_ && !(id.empty() && window_.txtPreview.Text().empty())) return;
    shown_id_ = id;
    text_due_ = !id.empty();
    window_.txtPreview.Set_Text(id.empty() ? "No item. Click a row of the list to see its item here."
                                           : known);
  });
}

// An item that cannot be read now is shown as far as it is known.
void Item_Preview::Show_Text() {
  errors_.Run("Show_Text", [&] {
    const FlexGrid& grid = window_.grdItems;
    if (!Is_On() || !grid.Has_Row() || !std::exchange(text_due_, false)) return;
    const GridRow row = grid.Row_At(grid.Row());
    std::string text;
    errors_.Try([&] {
      if (const Item_Ptr item = display_.Fetch(row)) text = item->Body(most_characters);
    });
    errors_.error.Clear();
    if (errors_.Store_Gone()) return;
    window_.txtPreview.Set_Text(Known(row) + "\r\n\r\n" + text);
  });
}

}  // namespace tidyfold
