#include "grid/grid_rows.h"

#include <utility>
#include <vector>

namespace tidyfold {

Grid_Rows::Grid_Rows(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                     Item_Filters& filters, Grid_Columns& columns, Selection_Total& total,
                     Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      grid_(window.grdItems),
      records_(records),
      folder_tree_(folder_tree),
      filters_(filters),
      columns_(columns),
      total_(total),
      message_box_(message_box),
      errors_(errors) {}

void Grid_Rows::Wire() {
  window_.chkShowAllFolders.Click = [this] { chkShowAllFolders_Click(); };
  window_.chkShowSelectedItems.Click = [this] {
    errors_.Run("chkShowSelectedItems_Click", [&] { Show_Option_Click(window_.chkShowSelectedItems, true); });
  };
  window_.chkShowUnselectedItems.Click = [this] {
    errors_.Run("chkShowUnselectedItems_Click",
                [&] { Show_Option_Click(window_.chkShowUnselectedItems, false); });
  };
  grid_.Header_Click = [this](int column) { Header_Click(column); };
  for (std::size_t field = 0; field < window_.mnuSortBy.size(); ++field)
    window_.mnuSortBy[field].Click = [this, field] { mnuSortBy_Click(static_cast<Grid_Field>(field)); };
  window_.mnuSortReverse.Click = [this] {
    // A field that the view does not show has no order to turn.
    if (const int column = columns_.Get_Sort_Column(SortField); column < grid_.Cols()) Header_Click(column);
  };
}

bool Grid_Rows::In_View(int folder) const {
  if (!tree_.Exists(folder)) return false;
  return window_.chkShowAllFolders.Checked() ? tree_.Checked(folder) : folder == CurrentNodeIndex;
}

bool Grid_Rows::Add_New_Row(int folder, std::int32_t item, bool selected) {
  GridRow row;
  row.row_data = folder;
  row.item = item;
  row.marked = selected;
  row.bold = records_[folder].Cached(item).Unread;
  row.back_colour = selected ? selected_row_colour : system_window_background;
  if (grid_.Add_Item(row)) return true;
  if (!std::exchange(overflow_reported_, true)) {
    message_box_.Show(
        "Insufficient memory to display all selected items.\r\n"
        "Select fewer folders or change Screen Options to diplay fewer items.");
  }
  return false;
}

void Grid_Rows::Add_Folder_Rows(int folder, Marker marker) {
  errors_.Run("Add_Folder_Rows", [&] {
    const bool all_kinds = marker == Marker::None;
    const bool selected_wanted =
        all_kinds ? window_.chkShowSelectedItems.Checked() : marker == Marker::Selected;
    const bool unselected_wanted =
        all_kinds ? window_.chkShowUnselectedItems.Checked() : marker == Marker::Unselected;
    // Rows that are picked by hand are not picked by a filter.
    const bool by_hand = window_.chkSelectByRow.Checked();
    const std::int32_t given = records_[folder].RowCount, cached = records_[folder].CachedCount;
    const std::int32_t first = all_kinds ? given + 1 : 1, last = all_kinds ? cached : given;
    if (all_kinds) records_[folder].RowCount = cached;
    for (std::int32_t item = first; item <= last; ++item) {
      if (records_[folder].Cached(item).ItemClass == ItemData::deleted) continue;
      const bool selected = filters_.Check_Filtered_Record(folder, folder, item);
      if (!(selected ? selected_wanted : unselected_wanted)) continue;
      if (!Add_New_Row(folder, item, selected && !by_hand)) return;
    }
  });
}

void Grid_Rows::Add_All_Folders_Rows(Marker marker) {
  errors_.Run("Add_All_Folders_Rows", [&] {
    for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
      const int folder = folder_tree_.Get_Node_Index(node);
      if (folder == 0 || !In_View(folder)) continue;
      Display_Update_Grid_Status(folder);
      Add_Folder_Rows(folder, marker);
    }
    window_.sbStatusBar.Set_Panel_Text(1, "");
    Set_Grid_Order();
  });
}

void Grid_Rows::Remove_All_Rows() {
  errors_.Run("Remove_All_Rows", [&] {
    grid_.Set_Rows(1);
    for (int index = 1; index <= records_.Upper_Bound(); ++index) records_[index].RowCount = 0;
    overflow_reported_ = false;
  });
}

void Grid_Rows::Remove_Folder_Rows(int folder) {
  errors_.Run("Remove_Folder_Rows", [&] {
    grid_.Remove_Rows_If([&](const GridRow& row) { return row.row_data == folder; });
    records_[folder].RowCount = 0;
  });
}

void Grid_Rows::Remove_Nonselected_Folder_Rows() {
  errors_.Run("Remove_Nonselected_Folder_Rows", [&] {
    grid_.Remove_Rows_If([&](const GridRow& row) { return !In_View(row.row_data); });
    for (int index = 1; index <= records_.Upper_Bound(); ++index)
      if (!In_View(index)) records_[index].RowCount = 0;
  });
}

void Grid_Rows::Remove_Selected_Or_Unselected_Rows(bool selected) {
  errors_.Run("Remove_Selected_Or_Unselected_Rows",
              [&] { grid_.Remove_Rows_If([&](const GridRow& row) { return row.marked == selected; }); });
}

void Grid_Rows::Change_Filtered_Rows() {
  errors_.Run("Change_Filtered_Rows", [&] {
    if (window_.chkShowSelectedItems.Checked() && window_.chkShowUnselectedItems.Checked()) {
      Mark_Or_Unmark_Filtered_Rows();
    } else {
      Remove_All_Rows();
      Add_All_Folders_Rows(Marker::None);
    }
    Display_Selected_Items_Total();
    Display_Empty_Text();
  });
}

void Grid_Rows::Change_Folder_Rows(int node) {
  errors_.Run("Change_Folder_Rows", [&] {
    const int folder = folder_tree_.Get_Node_Index(node);
    Remove_Nonselected_Folder_Rows();
    // Rows that were picked by hand keep their marks.
    if (window_.chkSelectByRow.Checked() && In_View(folder) && records_[folder].RowCount > 0) return;
    Remove_Folder_Rows(folder);
    if (In_View(folder)) Add_Folder_Rows(folder, Marker::None);
    Set_Grid_Order();
  });
}

void Grid_Rows::Set_Grid_Order() {
  errors_.Run("Set_Grid_Order", [&] {
    const int column = columns_.Get_Sort_Column(SortField);
    if (column >= grid_.Cols()) return;
    grid_.Sort(column, SortAscending ? Sort_Mode::String_Ascending : Sort_Mode::String_Descending);
  });
}

void Grid_Rows::Mark_Or_Unmark_Filtered_Rows() {
  errors_.Run("Mark_Or_Unmark_Filtered_Rows", [&] {
    struct Found {
      std::int32_t rows = 0;
      std::int64_t passing = 0, bytes = 0;
    };
    std::vector<Found> folders(static_cast<std::size_t>(records_.Upper_Bound()) + 1);
    for (int row = 1; row < grid_.Rows(); ++row) {
      const GridRow at = grid_.Row_At(row);
      const bool marked = filters_.Check_Filtered_Record(at.row_data, at.row_data, at.item);
      Found& found = folders.at(static_cast<std::size_t>(at.row_data));
      ++found.rows;
      if (marked) {
        ++found.passing;
        found.bytes += records_[at.row_data].Cached(at.item).Size;
      }
      if (marked == at.marked) continue;
      grid_.Set_Mark(row, marked);
      Paint_Row(row);
    }
    // Where every record has its row, nobody need ask the filters again for the total.
    for (int folder = 1; folder <= records_.Upper_Bound(); ++folder) {
      const Found& found = folders[static_cast<std::size_t>(folder)];
      if (found.rows > 0 && found.rows == records_[folder].RowCount)
        total_.Take_Over(folder, {0, found.rows, found.passing, found.bytes});
    }
  });
}

void Grid_Rows::Paint_Row(int row) {
  const GridRow& at = grid_.Row_At(row);
  const FolderData& record = records_[at.row_data];
  const bool unread = at.item >= 1 && at.item <= record.Cache_Bound() && record.Cached(at.item).Unread;
  grid_.Set_Paint(row, unread, at.marked ? selected_row_colour : system_window_background);
}

void Grid_Rows::Paint_Entire_Grid() {
  errors_.Run("Paint_Entire_Grid", [&] {
    for (int row = 1; row < grid_.Rows(); ++row) Paint_Row(row);
  });
}

std::int32_t Grid_Rows::Get_Rows_Selected_Count(std::int32_t deleted_items_index) {
  return errors_.Run("Get_Rows_Selected_Count", [&] {
    if (deleted_items_index == 0) return static_cast<std::int32_t>(grid_.Marked_Rows());
    std::int32_t count = 0;
    for (int row = 1; row < grid_.Rows(); ++row) {
      const GridRow& at = grid_.Row_At(row);
      if (at.marked && records_[at.row_data].DeletedItemsIndex == deleted_items_index) ++count;
    }
    return count;
  });
}

void Grid_Rows::Display_Selected_Items_Total() {
  errors_.Run("Display_Selected_Items_Total", [&] {
    total_.Count();
    std::string text = "Total Selected:  " + std::to_string(total_.Items());
    if (total_.Bytes() > 0) text += " (" + Format_Size(total_.Bytes()) + ")";
    window_.sbStatusBar.Set_Panel_Text(3, text);
    for (MenuItem* const entry : {&window_.mnuOpenItem, &window_.mnuCopyRows})
      entry->Set_Enabled(grid_.Enabled() && grid_.Rows() > 1);
  });
}

void Grid_Rows::Display_Empty_Text() {
  errors_.Run("Display_Empty_Text", [&] { grid_.Set_Empty_Text(total_.Empty_Text()); });
}

void Grid_Rows::Display_Update_Grid_Status(int folder) {
  errors_.Run("Display_Update_Grid_Status", [&] {
    window_.sbStatusBar.Set_Panel_Text(1, "Displaying Folder Items - " + records_[folder].FolderName);
  });
}

void Grid_Rows::chkShowAllFolders_Click() {
  errors_.Run("chkShowAllFolders_Click", [&] {
    const bool all_folders = window_.chkShowAllFolders.Checked();
    // Taking back a refused tick changes nothing.
    if (all_folders == showing_all_folders_) return;
    if (all_folders && window_.chkSelectByRow.Checked() && !Check_Select_By_Row()) {
      window_.chkShowAllFolders.Set_Value(0);
      return;
    }
    showing_all_folders_ = all_folders;
    grid_.Set_Redraw(false);
    Display_Sort_Menu();
    columns_.Set_Grid_Columns();
    Remove_All_Rows();
    Add_All_Folders_Rows(Marker::None);
    Display_Selected_Items_Total();
    Display_Empty_Text();
    grid_.Set_Redraw(true);
  });
}

void Grid_Rows::Show_Option_Click(const CheckBox& box, bool selected) {
  grid_.Set_Redraw(false);
  if (box.Checked()) {
    Add_All_Folders_Rows(selected ? Marker::Selected : Marker::Unselected);
  } else {
    Remove_Selected_Or_Unselected_Rows(selected);
  }
  Display_Selected_Items_Total();
  Display_Empty_Text();
  grid_.Set_Redraw(true);
}

void Grid_Rows::Header_Click(int column) {
  errors_.Run("grdItems_HeaderClick", [&] {
    const Grid_Field field = columns_.Get_Sort_Field(column);
    SortAscending = field == SortField ? !SortAscending : true;
    SortField = field;
    Display_Sort_Menu();
    grid_.Set_Redraw(false);
    Set_Grid_Order();
    grid_.Set_Redraw(true);
  });
}

// Choosing the field again keeps the order; a header turns it.
void Grid_Rows::mnuSortBy_Click(Grid_Field field) {
  errors_.Run("mnuSortBy_Click", [&] {
    const int column = columns_.Get_Sort_Column(field);
    if (field != SortField && column < grid_.Cols()) Header_Click(column);
  });
}

void Grid_Rows::Display_Sort_Menu() {
  errors_.Run("Display_Sort_Menu", [&] {
    for (std::size_t field = 0; field < window_.mnuSortBy.size(); ++field) {
      MenuItem& entry = window_.mnuSortBy[field];
      entry.Set_Enabled(columns_.Get_Sort_Column(static_cast<Grid_Field>(field)) < grid_.Cols());
      entry.Set_Checked(static_cast<Grid_Field>(field) == SortField);
    }
    window_.mnuSortReverse.Set_Checked(!SortAscending);
  });
}

}  // namespace tidyfold
