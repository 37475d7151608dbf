// Which folders may be marked, and what a mark changes in the window.
#pragma once

#include "grid/grid_rows.h"
#include "outlook/deleted_items.h"

namespace tidyfold {

class Folder_Marking {
 public:
  Folder_Marking(MainWindow& window, FolderData_Array& records, Protected_Folders& protection,
                 Folder_Tree& folder_tree, Deleted_Items_Folders& deleted_items, Grid_Rows& rows,
                 Message_Box& message_box, Error_Handler& errors);

  // Sets the handlers of the tree and of the unmark command.
  void Wire();

  void trvFolders_MouseUp();
  // Whether the tick that the person has just set stands; a refused one is undone with a message.
  bool Check_Node_Click(int node);
  // The whole reaction to a click or tick.
  void Node_Click_Or_Check(int node);
  bool Check_Root_Node(int node);
  // True when some marked folder below or at the node has a child that is not marked.
  bool Check_For_Unmarked_Child(int node);
  int Count_Selected_Nodes();
  // Unmarks every node but one. Part of the program's fixed interface; no command calls it.
  void Deselect_Folder_Nodes(int keep);
  // Unmarks a node, its siblings and everything below them.
  void Unmark_Nodes(int node);
  // Carries a mark to a node, the siblings after it and everything below them.
  void Set_Children_Nodes_Checkboxes(int node, bool checked);
  void mnuUnmark_Click();
  // The selected folder, as by its tick.
  void mnuMark_Click() { Mark_Selected_Folder(true); }
  void mnuUnmarkFolder_Click() { Mark_Selected_Folder(false); }
  // The selected folder and, whatever Mark Sub Folders says, all below it.
  void mnuMarkBranch_Click();
  // Protects the selected folder or takes its own protection off. What is protected loses its tick and its
  // picked rows.
  void mnuProtect_Click();
  // True when a marked folder holds a protected one anywhere below.
  bool Check_For_Protected_Below();

 private:
  void Mark_Selected_Folder(bool checked);
  void Put_Highlight_Back();
  bool Refuse(int node, bool checked, const char* message);
  void Let_Go_Of_Protected(int node);
  bool May_Be_Marked_With_Its_Parent(int node);

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Protected_Folders& protection_;
  Folder_Tree& folder_tree_;
  Deleted_Items_Folders& deleted_items_;
  Grid_Rows& rows_;
  Message_Box& message_box_;
  Error_Handler& errors_;
  // Set by click and tick, cleared when the mouse-up that follows them has been handled.
  bool NodeClicked = false;
  bool NodeChecked = false;
  bool marking_branch_ = false;
};

}  // namespace tidyfold
