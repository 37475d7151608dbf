#include "marking/folder_marking.h"

#include <vector>

#include "base/flag_scope.h"

namespace tidyfold {

Folder_Marking::Folder_Marking(MainWindow& window, FolderData_Array& records, Protected_Folders& protection,
                               Folder_Tree& folder_tree, Deleted_Items_Folders& deleted_items,
                               Grid_Rows& rows, Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      protection_(protection),
      folder_tree_(folder_tree),
      deleted_items_(deleted_items),
      rows_(rows),
      message_box_(message_box),
      errors_(errors) {}

void Folder_Marking::Wire() {
  tree_.NodeCheck = [this](int node) {
    errors_.Run("trvFolder_NodeCheck", [&] {
      tree_.Set_Selected_Item(node);
      NodeClicked = NodeChecked = true;
    });
  };
  tree_.NodeClick = [this](int) { errors_.Run("trvFolders_NodeClick", [&] { NodeClicked = true; }); };
  tree_.MouseUp = [this] { trvFolders_MouseUp(); };
  tree_.KeyUp = [this] { errors_.Run("trvFolders_KeyUp", [&] { trvFolders_MouseUp(); }); };
  tree_.Expand = [this](int node) {
    errors_.Run("trvFolders_Expand", [&] { folder_tree_.Set_Node_Text(node); });
  };
  tree_.Collapse = [this](int node) {
    errors_.Run("trvFolders_Collapse", [&] { folder_tree_.Set_Node_Text(node); });
  };
  window_.mnuUnmark.Click = [this] { mnuUnmark_Click(); };
  window_.mnuMark.Click = [this] { mnuMark_Click(); };
  window_.mnuUnmarkFolder.Click = [this] { mnuUnmarkFolder_Click(); };
  window_.mnuMarkBranch.Click = [this] { mnuMarkBranch_Click(); };
  window_.mnuProtect.Click = [this] { mnuProtect_Click(); };
}

void Folder_Marking::trvFolders_MouseUp() {
  errors_.Run("trvFolders_MouseUp", [&] {
    const No_Redraw no_redraw(window_.grdItems);
    protection_.Say_Why(0);
    if (tree_.Selected_Item() != 0) Node_Click_Or_Check(tree_.Selected_Item());
    NodeChecked = NodeClicked = false;
  });
}

bool Folder_Marking::Refuse(int node, bool checked, const char* message) {
  tree_.Set_Checked(node, checked);
  message_box_.Show(message, Buttons::OK_Only, Icon::Critical);
  return false;
}

bool Folder_Marking::Check_Node_Click(int node) {
  return errors_.Run("Check_Node_Click", [&] {
    if (!NodeClicked) return false;
    const MAPIFolder_Ptr folder = records_[node].Folder;
    if (folder == nullptr) return true;
    // Without a box: the lock has said it already.
    if (NodeChecked && protection_.Is_Protected(node)) {
      tree_.Set_Checked(node, false);
      protection_.Say_Why(node);
      return false;
    }
    const bool delete_folders = window_.chkDeleteFolders.Checked();
    if (delete_folders && tree_.Checked(node) && folder_tree_.Check_Default_Folder(folder))
      return Refuse(node, false, "Cannot mark a default folder while \" Delete Folders\" is marked.");
    if (delete_folders && Check_Root_Node(node))
      return Refuse(node, false, "Cannot select a root folder while \" Delete Folders\" is marked.");
    if (delete_folders && tree_.Checked(node) && protection_.Holds_Protected(node))
      return Refuse(node, false,
                    "Cannot mark a folder that holds a protected folder while \"Delete Folders\" is marked.");
    if (!deleted_items_.Allow_Deleted_Items_Folder(node))
      return Refuse(node, false,
                    "Cannot marked \"Deleted Items\" folder if Permanent Delete box is unchecked.");
    // A folder that may not be marked with its parent is no unticked one when it is only clicked.
    const int parent = tree_.Parent(node);
    if (delete_folders && NodeChecked && !tree_.Checked(node) && parent != 0 && tree_.Checked(parent))
      return Refuse(node, true,
                    "Cannot unmark a folder while its parent folder is marked and \"Delete Folders\" is also "
                    "marked.");
    return true;
  });
}

void Folder_Marking::Node_Click_Or_Check(int node) {
  errors_.Run("Node_Click_Or_Check", [&](Procedure& procedure) {
    if (!Check_Node_Click(node)) return Put_Highlight_Back();
    // A message of the check may have let other handlers run.
    if (!tree_.Exists(node)) return;
    protection_.Say_Why(node);
    const int picked = rows_.Picked();
    const bool checked = tree_.Checked(node);
    // A mere click on a folder's name ticks nothing.
    const bool with_all_below = (NodeChecked && window_.chkMarkSubFolders.Checked()) || marking_branch_;
    if (checked && with_all_below && tree_.Children(node) > 0)
      Set_Children_Nodes_Checkboxes(tree_.Child(node), checked);
    if (checked) tree_.Set_Expanded(node, true);
    folder_tree_.Set_Node_Text(node);
    if (node != rows_.CurrentNodeIndex) {
      const int previous = rows_.CurrentNodeIndex;
      const bool all_folders = window_.chkShowAllFolders.Checked();
      if (previous >= 1 && tree_.Exists(previous) && !all_folders && window_.chkSelectByRow.Checked()) {
        tree_.Set_Checked(previous, false);
        folder_tree_.Set_Node_Text(previous);
      }
      rows_.Fit_Columns_To_Folder(node);
      procedure.Step("Node_Click_Or_Check - changing current folder");
      rows_.CurrentNodeIndex = node;
      folder_tree_.Set_Folder_Label(node);
    }
    rows_.Change_Folder_Rows(node);
    rows_.Say_What_Was_Let_Go(picked);
  });
}

// After a refused tick the tree shows again which folder the list is about.
void Folder_Marking::Put_Highlight_Back() {
  if (tree_.Exists(rows_.CurrentNodeIndex)) tree_.Set_Selected_Item(rows_.CurrentNodeIndex);
  rows_.Follow_Choice();
}

bool Folder_Marking::Check_Root_Node(int node) {
  return errors_.Run("Check_Root_Node", [&] {
    const int parent = tree_.Parent(node);
    return parent == 0 || (folder_tree_.TopLevelIsRoot && tree_.Parent(parent) == 0);
  });
}

bool Folder_Marking::Check_For_Unmarked_Child(int node) {
  return errors_.Run("Check_For_Unmarked_Child", [&] {
    for (int child = tree_.Child(node); child != 0; child = tree_.Next(child)) {
      if (tree_.Checked(node) && !tree_.Checked(child)) return true;
      if (Check_For_Unmarked_Child(child)) return true;
    }
    return false;
  });
}

int Folder_Marking::Count_Selected_Nodes() {
  return errors_.Run("Count_Selected_Nodes", [&] { return tree_.Checked_Count(); });
}

void Folder_Marking::Deselect_Folder_Nodes(int keep) {
  errors_.Run("Deselect_Folder_Nodes", [&] {
    for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
      if (!tree_.Exists(node) || node == keep || !tree_.Checked(node)) continue;
      tree_.Set_Checked(node, false);
      tree_.Set_Bold(node, false);
    }
  });
}

void Folder_Marking::Unmark_Nodes(int node) {
  errors_.Run("Unmark_Nodes", [&] {
    for (int at = tree_.First_Sibling(node); at != 0; at = tree_.Next(at)) {
      if (tree_.Child(at) != 0) Unmark_Nodes(tree_.Child(at));
      tree_.Set_Checked(at, false);
      if (Check_Root_Node(at)) tree_.Set_Expanded(at, true);
      folder_tree_.Set_Node_Text(at);
    }
  });
}

// What may not be marked by hand is not marked with its parent either.
bool Folder_Marking::May_Be_Marked_With_Its_Parent(int node) {
  if (protection_.Is_Protected(node)) return false;
  if (!window_.chkPermanentDelete.Checked() && deleted_items_.Is_Deleted_Items_Folder(node)) return false;
  return !window_.chkDeleteFolders.Checked() ||
         (!Check_Root_Node(node) && !folder_tree_.Check_Default_Folder(records_[node].Folder) &&
          !protection_.Holds_Protected(node));
}

void Folder_Marking::Set_Children_Nodes_Checkboxes(int node, bool checked) {
  errors_.Run("Set_Children_Nodes_Checkboxes", [&] {
    if (checked && tree_.Parent(node) != 0) tree_.Set_Expanded(tree_.Parent(node), true);
    for (int at = node; at != 0; at = tree_.Next(at)) {
      if (!tree_.Checked(at) && checked && May_Be_Marked_With_Its_Parent(at)) {
        tree_.Set_Checked(at, true);
        if (window_.chkShowAllFolders.Checked()) {
          // Removing looks through all rows, which takes too long for each folder of a large branch.
          if (records_[at].RowCount > 0) rows_.Remove_Folder_Rows(at);
          rows_.Add_Folder_Rows(at, Marker::None);
        }
      }
      tree_.Set_Bold(at, tree_.Checked(at));
      if (tree_.Children(at) > 0) Set_Children_Nodes_Checkboxes(tree_.Child(at), checked);
    }
  });
}

void Folder_Marking::mnuUnmark_Click() {
  errors_.Run("mnuUnmark_Click", [&] {
    if (!tree_.Exists(1)) return;
    const No_Redraw no_redraw(window_.grdItems);
    const int picked = rows_.Picked();
    Unmark_Nodes(1);
    rows_.Remove_All_Rows();
    // The current folder stays in view.
    rows_.Add_All_Folders_Rows(Marker::None);
    rows_.Follow_Choice();
    rows_.Say_What_Was_Let_Go(picked);
  });
}

void Folder_Marking::Mark_Selected_Folder(bool checked) {
  errors_.Run("Mark_Selected_Folder", [&] {
    const int node = tree_.Selected_Item();
    if (node == 0 || tree_.Checked(node) == checked) return;
    tree_.Tick(node, checked);
    trvFolders_MouseUp();
  });
}

void Folder_Marking::mnuMarkBranch_Click() {
  errors_.Run("mnuMarkBranch_Click", [&] {
    const int node = tree_.Selected_Item();
    if (node == 0) return;
    if (tree_.Checked(node)) {
      NodeClicked = true;
    } else {
      tree_.Tick(node, true);
    }
    const Flag_Scope branch(marking_branch_);
    trvFolders_MouseUp();
  });
}

bool Folder_Marking::Check_For_Protected_Below() {
  return errors_.Run("Check_For_Protected_Below", [&] {
    for (int node = 1; node <= tree_.Upper_Bound(); ++node)
      if (tree_.Exists(node) && tree_.Checked(node) && protection_.Holds_Protected(node)) return true;
    return false;
  });
}

void Folder_Marking::mnuProtect_Click() {
  errors_.Run("mnuProtect_Click", [&] {
    const int node = tree_.Selected_Item();
    if (node == 0 || !protection_.Can_Change(node)) return;
    protection_.Set(node, !protection_.Is_Protected_Itself(node));
    if (protection_.Is_Protected(node)) Let_Go_Of_Protected(node);
    rows_.Follow_Choice();
    protection_.Say_Why(node);
  });
}

void Folder_Marking::Let_Go_Of_Protected(int node) {
  const No_Redraw no_redraw(window_.grdItems);
  std::vector<int> due{node}, captions;
  while (!due.empty()) {
    const int at = due.back();
    due.pop_back();
    for (int child = tree_.Child(at); child != 0; child = tree_.Next(child)) due.push_back(child);
    if (!tree_.Checked(at)) continue;
    tree_.Set_Checked(at, false);
    captions.push_back(at);
  }
  // The folders above show in bold what is ticked below. They cannot go either.
  for (int above = tree_.Parent(node); above != 0; above = tree_.Parent(above)) {
    if (window_.chkDeleteFolders.Checked() && records_[above].Folder != nullptr)
      tree_.Set_Checked(above, false);
    captions.push_back(above);
  }
  for (const int changed : captions) folder_tree_.Set_Node_Text(changed);
  FlexGrid& grid = window_.grdItems;
  for (int row = 1; row < grid.Rows(); ++row) {
    if (!grid.Row_At(row).marked || !protection_.Is_Protected(grid.RowData(row))) continue;
    grid.Set_Mark(row, false);
    rows_.Paint_Row(row);
  }
  const int current = tree_.Exists(rows_.CurrentNodeIndex) ? rows_.CurrentNodeIndex : node;
  rows_.Change_Folder_Rows(current);
}

}  // namespace tidyfold
