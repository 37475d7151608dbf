#include "grid/item_display.h"

#include "base/text.h"

namespace tidyfold {

void Item_Display::Wire() {
  window_.mnuOpenItem.Click = [this] { mnuOpenItem_Click(); };
  grid_.MouseDown = [this](int) { CurrentRow = grid_.Row(); };
  grid_.DblClick = [this] {
    errors_.Run("grdItems_DblClick", [&] {
      if (grid_.MouseRow() >= 1) Display_Current_Item();
    });
  };
  grid_.KeyPress = [this](int key_code) {
    errors_.Run("grdItems_KeyPress", [&] {
      if (key_code == 13) Display_Row(grid_.Row());
    });
  };
}

void Item_Display::Display_Current_Item() {
  errors_.Run("Display_Current_Item", [&] { Display_Row(CurrentRow); });
}

void Item_Display::mnuOpenItem_Click() {
  errors_.Run("mnuOpenItem_Click", [&] { Display_Row(grid_.Row()); });
}

void Item_Display::Display_Row(int at) {
  if (at < 1 || at >= grid_.Rows() || !Shows_Item(grid_.Row_At(at))) return;
  const Item_Ptr item = Fetch(grid_.Row_At(at));
  if (errors_.Store_Gone()) return;
  if (item == nullptr) {
    message_box_.Show("Item could not be retrieved", Buttons::OK_Only, Icon::Critical);
  } else {
    item->Display();
  }
}

// Of a folder in a store; while a run goes, the row of an item that it has deleted stands for none.
bool Item_Display::Shows_Item(const GridRow& row) const {
  if (row.row_data <= 0 || row.item < 1) return false;
  const FolderData& record = records_[row.row_data];
  if (record.Folder == nullptr || row.item > record.Cache_Bound()) return false;
  return record.Cached(row.item).ItemClass != ItemData::deleted && !Trim(record.Folder->StoreID()).empty();
}

// The item that the row shows, though others may have come or gone before it in the folder since it was read.
// One that could not be read then has no EntryID, and is not looked for by its place.
Item_Ptr Item_Display::Fetch(const GridRow& row) {
  if (!Shows_Item(row)) return nullptr;
  const FolderData& record = records_[row.row_data];
  const std::string entry_id = record.Cached(row.item).EntryID;
  const std::string store_id = record.Folder->StoreID();
  Item_Ptr item;
  if (!Trim(entry_id).empty())
    errors_.Try([&] { item = session_.name_space->GetItemFromID(entry_id, store_id); });
  errors_.error.Clear();
  return item;
}

}  // namespace tidyfold
