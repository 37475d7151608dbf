// Bringing the window up to date with the stores, also in the middle of loading.
#pragma once

#include "cache/item_cache.h"

namespace tidyfold {

// Builds tree and list anew and loads the items.
class Interface_Loader {
 public:
  virtual ~Interface_Loader() = default;
  virtual void Load_Interface() = 0;
};

class Refresh {
 public:
  Refresh(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree, Item_Cache& cache,
          Item_View& view, Interface_Loader& loader, Program_Phase& phase, Message_Box& message_box,
          Error_Handler& errors);

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
  // Does what was put off while something else was under way: reloads marked folders, or rebuilds everything.
  void Catch_Up();

  bool ReloadRequested = false;

 private:
  void Load_What_Is_Missing();

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Item_Cache& cache_;
  Item_View& view_;
  Interface_Loader& loader_;
  Program_Phase& phase_;
  Message_Box& message_box_;
  Error_Handler& errors_;
  bool asking_to_stop_ = false;
  bool reset_any_ = false;  // a folder was reset and has not been loaded again
};

}  // namespace tidyfold
