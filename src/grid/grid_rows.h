// Which rows the grid holds, how they are marked and in which order they stand.
#pragma once

#include "cache/window_updates.h"
#include "grid/choice_status.h"
#include "grid/grid_columns.h"

namespace tidyfold {

// The background of selected rows.
inline constexpr Colour selected_row_colour = 0x00FFFF00;

// Which rows are wanted: of one kind only, or of the kinds that the show options ask for ("NONE").
enum class Marker { None, Selected, Unselected };

class Grid_Rows : public Item_View {
 public:
  Grid_Rows(MainWindow& window, FolderData_Array& records, Planner& planner, Grid_Columns& columns,
            Choice_Status& status, Command_State& commands, Message_Box& message_box, Error_Handler& errors);

  // Sets the handlers of the show options' boxes and of the column headers.
  void Wire();

  // The folder whose items the grid shows while Show All Folders is off; 0 for none.
  int CurrentNodeIndex = 0;
  // The order of the rows survives rebuilding them.
  Grid_Field SortField = Grid_Field::Item_Date;
  bool SortAscending = false;
  Sort_Mode Order() const {
    return SortAscending ? Sort_Mode::String_Ascending : Sort_Mode::String_Descending;
  }

  bool In_View(int folder) const override;

  // Appends a row for a cached item. False when the grid can take no more, which is said once.
  bool Add_New_Row(int folder, std::int32_t item, bool selected);
  // Appends the rows of one folder: with Marker::None of the records that the grid has not been given yet,
  // otherwise of all that it was given before.
  void Add_Folder_Rows(int folder, Marker marker);
  void Add_New_Records(int folder) override { Add_Folder_Rows(folder, Marker::None); }
  // The same for every folder in view; then applies the order.
  void Add_All_Folders_Rows(Marker marker);
  void Remove_All_Rows();
  void Remove_Folder_Rows(int folder) override;
  void Remove_Nonselected_Folder_Rows();
  void Remove_Selected_Or_Unselected_Rows(bool selected);
  void Change_Filtered_Rows() override;
  // A folder became current or its mark has changed.
  void Change_Folder_Rows(int folder);
  void Set_Grid_Order() override;
  // The columns follow the type of the folder that the grid shows while it shows a single one.
  void Fit_Columns_To_Folder(int folder);
  // Which fields the menu offers to sort by, and which one and way it is.
  void Display_Sort_Menu();

  // Sets every row's mark by the filter in force, unless rows are picked by hand.
  void Mark_Or_Unmark_Filtered_Rows();
  void Paint_Row(int row);
  void Paint_Entire_Grid();
  void Display_Selected_Items_Total() override { status_.Display_Selected_Items_Total(); }
  void Follow_Choice() override;
  void Display_Update_Grid_Status(int folder);

  // Rows that are picked by hand.
  int Picked() const { return window_.chkSelectByRow.Checked() ? grid_.Marked_Rows() : 0; }
  // Says how many rows that were picked before are not any more, because the list shows something else.
  void Say_What_Was_Let_Go(int picked_before);
  // Whether rows may be picked by hand now; a message when items that it needs are not loaded.
  bool Check_Select_By_Row();

 private:
  void chkShowAllFolders_Click();
  void Show_Option_Click(const CheckBox& box, bool selected);
  void Header_Click(int column);
  void mnuSortBy_Click(Grid_Field field);

  MainWindow& window_;
  TreeView& tree_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Planner& planner_;
  Grid_Columns& columns_;
  Choice_Status& status_;
  Command_State& commands_;
  Message_Box& message_box_;
  Error_Handler& errors_;
  bool showing_all_folders_ = false;
  bool overflow_reported_ = false;
};

}  // namespace tidyfold
