// The options that decide how a run treats the marked folders, and how they interlock.
#pragma once

#include "marking/control_enabling.h"
#include "marking/folder_marking.h"

namespace tidyfold {

class Processing_Options {
 public:
  Processing_Options(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                     Deleted_Items_Folders& deleted_items, Grid_Rows& rows, Folder_Marking& marking,
                     Control_Enabling& enabling, Message_Box& message_box, Error_Handler& errors);

  // Sets the handlers of the boxes and of the reset command.
  void Wire();

  void chkDeleteFolders_Click();
  void chkPermanentDelete_Click();
  void chkTurbo_Click();
  void chkCollapseFolders_Click();
  void mnuResetOptions_Click();
  // The options that take something for good are used for one run: off, without a question.
  void Put_Away_Dangerous_Options();

 private:
  void Delete_Folders_Ticked();
  bool Refuse(CheckBox& box, int value, const char* message);

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Deleted_Items_Folders& deleted_items_;
  Grid_Rows& rows_;
  Folder_Marking& marking_;
  Control_Enabling& enabling_;
  Message_Box& message_box_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
