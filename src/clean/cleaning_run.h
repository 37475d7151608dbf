// The Clean button: starting a run, cancelling it, and everything from the first question to the summary.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "cache/item_filters.h"
#include "cache/refresh.h"
#include "clean/copy_first.h"
#include "clean/deletion_strategies.h"
#include "marking/processing_options.h"

namespace tidyfold {

class Cleaning_Run {
 public:
  Cleaning_Run(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
               Deleted_Items_Folders& deleted_items, Planner& planner, Item_Filters& filters,
               Item_Cache& cache, Grid_Rows& rows, Processing_Options& processing_options, Refresh& refresh,
               Safety_Checks& checks, Copy_First& copy_first, Deletion_Strategies& strategies,
               Run_Journal& journal, Run_State& run, Program_Phase& phase, Message_Box& message_box,
               Events& events, Error_Handler& errors);

  // Sets the button's and the menu command's handlers.
  void Wire();

  // Starts a run, or offers to cancel the one that is going.
  void cmdRun_Click();
  // Starts a run that takes exactly what a plan says, whatever is ticked.
  void Run_Plan(Clean_Plan plan);
  // Cleans what the run's plan takes at a node and below it, children first.
  void Process_Each_Node(int node, int depth);

 private:
  void Offer_Cancel();
  void Begin(std::optional<Clean_Plan> given);
  void Run();
  void Clean_Stop(const Plan_Stop& stop);
  void Confirm_And_Clean(const Plan_Stop& stop);
  void Clean_Folder(const Plan_Stop& stop);
  void Finish();
  void Rebuild_Window();
  void Say_What_Has_Changed();
  std::string Summary() const;

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Deleted_Items_Folders& deleted_items_;
  Planner& planner_;
  Item_Filters& filters_;
  Item_Cache& cache_;
  Grid_Rows& rows_;
  Processing_Options& processing_options_;
  Refresh& refresh_;
  Safety_Checks& checks_;
  Copy_First& copy_first_;
  Deletion_Strategies& strategies_;
  Run_Journal& journal_;
  Run_State& run_;
  Program_Phase& phase_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
  Clean_Plan plan_;  // of the run that is under way; constant from its first question on
  std::unordered_map<int, const Plan_Stop*> stops_;  // its stops by their folders
  bool asking_to_cancel_ = false;
};

}  // namespace tidyfold
