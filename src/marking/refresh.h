// Bringing the window up to date with the stores, also in the middle of loading.
#pragma once

#include <functional>

#include "cache/item_cache.h"
#include "grid/grid_rows.h"

namespace tidyfold {

class Refresh {
 public:
  Refresh(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree, Item_Cache& cache,
          Grid_Rows& rows, Message_Box& message_box, Error_Handler& errors);

  // Sets the menu commands' handlers.
  void Wire();

  // Rebuilds everything from the stores; while something else is under way, as soon as that has ended.
  void mnuRefresh_Click();
  // Reads the selected folder again.
  void mnuRefreshCurrent_Click();
  // Offers to stop loading; what has been read stays.
  void mnuStopLoading_Click();
  // Resets every folder that is marked for reload.
  void Reload_Marked_Folders();
  // Loads what is not loaded; then rebuilds everything if that was asked for meanwhile.
  void Load_What_Is_Missing();

  bool ReloadRequested = false;

  std::function<void()> Load_Interface;
  // Load_Interface is under way further out.
  std::function<bool()> Interface_Loading;
  // A cleaning run, its questions included, is under way.
  std::function<bool()> Run_Under_Way;
  std::function<void()> Enable_Command_Buttons;

 private:
  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Item_Cache& cache_;
  Grid_Rows& rows_;
  Message_Box& message_box_;
  bool asking_to_stop_ = false;
  Error_Handler& errors_;
};

}  // namespace tidyfold
