#include "grid/grid_rows.h"

#include <utility>
#include <vector>

#include "base/size_text.h"

namespace tidyfold {

Grid_Rows::Grid_Rows(MainWindow& window, FolderData_Array& records, Planner& planner, Grid_Columns& columns,
                     Choice_Status& status, Command_State& commands, Message_Box& message_box,
                     Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      grid_(window.grdItems),
      records_(records),
      planner_(planner),
      columns_(columns),
      status_(status),
      commands_(commands),
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
  columns_.Columns_Exchanged = [this] {
    Set_Grid_Order();
    Display_Sort_Menu();
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
    const bool ticked = tree_.Checked(folder);
    for (std::int32_t item = first; item <= last; ++item) {
      if (records_[folder].Cached(item).ItemClass == ItemData::deleted) continue;
      const bool selected = ticked && planner_.Passes(folder, item);
      if (!(selected ? selected_wanted : unselected_wanted)) continue;
      if (!Add_New_Row(folder, item, selected && !by_hand)) return;
    }
  });
}

void Grid_Rows::Add_All_Folders_Rows(Marker marker) {
  errors_.Run("Add_All_Folders_Rows", [&] {
    for (int folder = 1; folder <= tree_.Upper_Bound(); ++folder) {
      if (!In_View(folder)) continue;
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
    if (std::exchange(records_[folder].RowCount, 0) == 0) return;
    grid_.Remove_Rows_If([&](const GridRow& row) { return row.row_data == folder; });
  });
}

void Grid_Rows::Remove_Nonselected_Folder_Rows() {
  errors_.Run("Remove_Nonselected_Folder_Rows", [&] {
    std::vector<char> goes(static_cast<std::size_t>(records_.Upper_Bound()) + 1, 0);
    bool any = false;
    for (int index = 1; index <= records_.Upper_Bound(); ++index) {
      if (In_View(index)) continue;
      goes[static_cast<std::size_t>(index)] = 1;
      any |= std::exchange(records_[index].RowCount, 0) > 0;
    }
    if (!any) return;
    grid_.Remove_Rows_If(
        [&](const GridRow& row) { return goes[static_cast<std::size_t>(row.row_data)] != 0; });
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
    Follow_Choice();
  });
}

void Grid_Rows::Change_Folder_Rows(int folder) {
  errors_.Run("Change_Folder_Rows", [&] {
    Remove_Nonselected_Folder_Rows();
    const bool all_given = records_[folder].RowCount == records_[folder].CachedCount;
    const bool all_kinds = window_.chkShowSelectedItems.Checked() && window_.chkShowUnselectedItems.Checked();
    if (In_View(folder) && records_[folder].RowCount > 0 && all_given && all_kinds) {
      // Every item has its row already, where it belongs; only the marks change.
      Mark_Or_Unmark_Filtered_Rows();
    } else {
      Remove_Folder_Rows(folder);
      if (In_View(folder)) Add_Folder_Rows(folder, Marker::None);
      const int column = columns_.Get_Sort_Column(SortField);
      // What goes may have changed for rows that stand in order already.
      if (SortField == Grid_Field::Will_Go) {
        Set_Grid_Order();
      } else if (column < grid_.Cols()) {
        grid_.Sort_New_Rows(column, Order());
      }
    }
    Follow_Choice();
  });
}

void Grid_Rows::Say_What_Was_Let_Go(int picked_before) {
  const int let_go = picked_before - Picked();
  if (let_go <= 0 || !window_.chkSelectByRow.Checked()) return;
  message_box_.Show(let_go == 1
                        ? "1 item that was picked is let go, as the list no longer shows it."
                        : Format_Count(let_go) +
                              " items that were picked are let go, as the list no longer shows them.");
}

void Grid_Rows::Set_Grid_Order() {
  errors_.Run("Set_Grid_Order", [&] {
    const int column = columns_.Get_Sort_Column(SortField);
    if (column >= grid_.Cols()) return;
    grid_.Sort(column, Order());
  });
}

void Grid_Rows::Mark_Or_Unmark_Filtered_Rows() {
  errors_.Run("Mark_Or_Unmark_Filtered_Rows", [&] {
    // Rows that were picked by hand stay picked, whatever the filters say.
    if (window_.chkSelectByRow.Checked()) return;
    // Rows of all folders stand between each other; each folder is asked once.
    std::vector<const std::vector<char>*> marks(static_cast<std::size_t>(records_.Upper_Bound()) + 1,
                                                nullptr);
    for (int folder = 1; folder <= tree_.Upper_Bound(); ++folder)
      if (In_View(folder) && tree_.Checked(folder))
        marks[static_cast<std::size_t>(folder)] = &planner_.Verdicts_Of(folder);
    grid_.Set_Marks(
        [&](const GridRow& row) {
          const std::vector<char>* passes = marks[static_cast<std::size_t>(row.row_data)];
          const auto item = static_cast<std::size_t>(row.item);
          return passes != nullptr && item >= 1 && item <= passes->size() && (*passes)[item - 1] != 0;
        },
        selected_row_colour, system_window_background);
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

void Grid_Rows::Follow_Choice() {
  errors_.Run("Follow_Choice", [&] {
    Display_Sort_Menu();
    status_.Display_Selected_Items_Total();
    status_.Display_Empty_Text(CurrentNodeIndex);
    commands_.Enable_Command_Buttons();
  });
}

bool Grid_Rows::Check_Select_By_Row() {
  return errors_.Run("Check_Select_By_Row", [&] {
    if (window_.chkShowAllFolders.Checked()) {
      if (planner_.Check_Selected_Folders()) return true;
      message_box_.Show(
          "Cannot select or use \"Show All Seleted Folders\" and \"Select By Row\" until all selected "
          "folders have been loaded.",
          Buttons::OK_Only, Icon::Critical);
      return false;
    }
    if (CurrentNodeIndex == 0 || records_[CurrentNodeIndex].Loaded) return true;
    message_box_.Show(
        "Cannot use \"Select By Row\" until folder is completely loaded (appears black in the Folder Tree).",
        Buttons::OK_Only, Icon::Critical);
    return false;
  });
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
    const int picked = Picked();
    const No_Redraw no_redraw(grid_);
    Remove_All_Rows();
    columns_.Set_Grid_Columns();
    // The columns that a single folder has may be those of the folder shown before all were.
    if (!all_folders) Fit_Columns_To_Folder(CurrentNodeIndex);
    Add_All_Folders_Rows(Marker::None);
    Follow_Choice();
    Say_What_Was_Let_Go(picked);
  });
}

void Grid_Rows::Fit_Columns_To_Folder(int folder) {
  // A folder that does not tell its type leaves the columns as they are.
  errors_.Run("Node_Click_Or_Check - changing folder types", [&] {
    const MAPIFolder_Ptr object = records_.Has(folder) ? records_[folder].Folder : nullptr;
    if (window_.chkShowAllFolders.Checked() || object == nullptr) return;
    const std::int32_t type = object->DefaultItemType();
    if (type < 0 || type == columns_.CurrentGridItemType) return;
    // Rows of the folder before do not fit the new columns.
    Remove_All_Rows();
    columns_.CurrentGridItemType = type;
    columns_.Set_Grid_Columns();
  });
}

void Grid_Rows::Show_Option_Click(const CheckBox& box, bool selected) {
  const No_Redraw no_redraw(grid_);
  if (box.Checked()) {
    Add_All_Folders_Rows(selected ? Marker::Selected : Marker::Unselected);
  } else {
    Remove_Selected_Or_Unselected_Rows(selected);
  }
  Follow_Choice();
}

void Grid_Rows::Header_Click(int column) {
  errors_.Run("grdItems_HeaderClick", [&] {
    const Grid_Field field = columns_.Get_Sort_Field(column);
    SortAscending = field == SortField ? !SortAscending : true;
    SortField = field;
    Display_Sort_Menu();
    const No_Redraw no_redraw(grid_);
    Set_Grid_Order();
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
