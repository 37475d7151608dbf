// The Clean button: starting a run, cancelling it, and everything from the first question to the summary.
#pragma once

#include <string>

#include "cache/item_cache.h"
#include "clean/deletion_strategies.h"
#include "marking/control_enabling.h"
#include "marking/refresh.h"

namespace tidyfold {

class Cleaning_Run {
 public:
  Cleaning_Run(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
               Deleted_Items_Folders& deleted_items, Item_Cache& cache, Grid_Rows& rows,
               Folder_Marking& marking, Control_Enabling& enabling, Refresh& refresh, Safety_Checks& checks,
               Deletion_Strategies& strategies, Run_State& run, Message_Box& message_box, Events& events,
               Error_Handler& errors);

  // Sets the button's and the menu command's handlers.
  void Wire();

  // Starts a run, or offers to cancel the one that is going.
  void cmdRun_Click();
  // Cleans what is marked at a node and below it, children first.
  void Process_Each_Node(int node, int depth);
  // From the first question of a run to its last step.
  bool Under_Way() const { return under_way_; }

 private:
  void Offer_Cancel();
  void Start();
  void Clean_Marked_Node(int node, int index);
  void Rebuild_Window();
  std::string Summary() const;

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Deleted_Items_Folders& deleted_items_;
  Item_Cache& cache_;
  Grid_Rows& rows_;
  Folder_Marking& marking_;
  Control_Enabling& enabling_;
  Refresh& refresh_;
  Safety_Checks& checks_;
  Deletion_Strategies& strategies_;
  Run_State& run_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
  bool under_way_ = false;
  bool asking_to_cancel_ = false;
};

}  // namespace tidyfold
