// What is asked and refused before a run, and before each folder and item of it.
#pragma once

#include "base/clock.h"
#include "cache/item_filters.h"
#include "grid/grid_rows.h"
#include "marking/folder_marking.h"
#include "marking/run_state.h"
#include "outlook/deleted_items.h"

namespace tidyfold {

// The most items that a Deleted Items folder may hold after a run.
inline constexpr std::int32_t most_deleted_items = 16383;

class Safety_Checks {
 public:
  Safety_Checks(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                Deleted_Items_Folders& deleted_items, Item_Filters& filters, Grid_Rows& rows,
                Folder_Marking& marking, Run_State& run, Message_Box& message_box, Clock& clock,
                Error_Handler& errors);

  // The whole gate before a run; false ends the Clean command before anything has changed.
  bool Check_Screen();
  // Says how many items or folders were identified, and warns of folders that are not loaded.
  bool Confirm_Selection_Count();
  // Refuses a run that would overfill a store's Deleted Items folder.
  bool Check_Deleted_Items_Folder();
  // A folder that cannot be asked about is reported, and the run has not deleted everything.
  bool Confirm_Current_Folder(int index);
  // Yes, No or Cancel; none of them when the item cannot be asked about, which is reported.
  Answer Confirm_Current_Item(Item& item);

 private:
  bool Ask(const std::string& question);
  std::int32_t Items_To_Take(int node);
  std::int32_t Items_In_Marked_Folders(int deleted_items_index);

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Deleted_Items_Folders& deleted_items_;
  Item_Filters& filters_;
  Grid_Rows& rows_;
  Folder_Marking& marking_;
  Run_State& run_;
  Message_Box& message_box_;
  Clock& clock_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
