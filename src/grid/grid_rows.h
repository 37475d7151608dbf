// Which rows the grid holds, how they are marked and in which order they stand.
#pragma once

#include <functional>

#include "cache/item_filters.h"
#include "grid/grid_columns.h"
#include "grid/selection_total.h"
#include "outlook/folder_tree.h"

namespace tidyfold {

// The background of selected rows.
inline constexpr Colour selected_row_colour = 0x00FFFF00;

// Which rows are wanted: of one kind only, or of the kinds that the show options ask for ("NONE").
enum class Marker { None, Selected, Unselected };

class Grid_Rows {
 public:
  Grid_Rows(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree, Item_Filters& filters,
            Grid_Columns& columns, Selection_Total& total, Message_Box& message_box, Error_Handler& errors);

  // Sets the handlers of the show options' boxes and of the column headers.
  void Wire();

  // The node whose items the grid shows while Show All Folders is off; 0 for none.
  int CurrentNodeIndex = 0;
  // The order of the rows survives rebuilding them.
  Grid_Field SortField = Grid_Field::Item_Date;
  bool SortAscending = false;

  // A folder's items stand in the grid: it is the current one or, with Show All Folders on, a marked one.
  bool In_View(int folder) const;

  // Appends a row for a cached item. False when the grid can take no more, which is said once.
  bool Add_New_Row(int folder, std::int32_t item, bool selected);
  // Appends the rows of one folder: with Marker::None of the records that the grid has not been given yet,
  // otherwise of all that it was given before.
  void Add_Folder_Rows(int folder, Marker marker);
  // The same for every folder in view; then applies the order.
  void Add_All_Folders_Rows(Marker marker);
  void Remove_All_Rows();
  void Remove_Folder_Rows(int folder);
  void Remove_Nonselected_Folder_Rows();
  void Remove_Selected_Or_Unselected_Rows(bool selected);
  // A filter has changed.
  void Change_Filtered_Rows();
  // A node became current or its mark has changed.
  void Change_Folder_Rows(int node);
  void Set_Grid_Order();
  // Which fields the menu offers to sort by, and which one and way it is.
  void Display_Sort_Menu();

  // Sets every row's mark by the filters.
  void Mark_Or_Unmark_Filtered_Rows();
  void Paint_Row(int row);
  void Paint_Entire_Grid();
  // Marked rows; with the record of a Deleted Items folder given, only those of the same store.
  std::int32_t Get_Rows_Selected_Count(std::int32_t deleted_items_index = 0);
  // How many items are selected, and how large they are.
  void Display_Selected_Items_Total();
  // What stands in an empty grid.
  void Display_Empty_Text();
  void Display_Update_Grid_Status(int folder);

  // Refuses Select By Row while items that it needs are not loaded; see row_selection.h.
  std::function<bool()> Check_Select_By_Row;

 private:
  void chkShowAllFolders_Click();
  void Show_Option_Click(const CheckBox& box, bool selected);
  void Header_Click(int column);
  void mnuSortBy_Click(Grid_Field field);

  MainWindow& window_;
  TreeView& tree_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Item_Filters& filters_;
  Grid_Columns& columns_;
  Selection_Total& total_;
  Message_Box& message_box_;
  Error_Handler& errors_;
  bool showing_all_folders_ = false;
  bool overflow_reported_ = false;
};

}  // namespace tidyfold
