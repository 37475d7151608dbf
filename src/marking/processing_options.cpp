#include "marking/processing_options.h"

#include <initializer_list>
#include <utility>

#include "base/size_text.h"

namespace tidyfold {

namespace {

void Force(std::initializer_list<std::pair<CheckBox*, int>> values) {
  for (const auto& [box, value] : values) box->Set_Value(value);
}

}  // namespace

Processing_Options::Processing_Options(MainWindow& window, FolderData_Array& records,
                                       Folder_Tree& folder_tree, Deleted_Items_Folders& deleted_items,
                                       Grid_Rows& rows, Folder_Marking& marking, Control_Enabling& enabling,
                                       Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      deleted_items_(deleted_items),
      rows_(rows),
      marking_(marking),
      enabling_(enabling),
      message_box_(message_box),
      errors_(errors) {}

void Processing_Options::Wire() {
  window_.chkDeleteFolders.Click = [this] { chkDeleteFolders_Click(); };
  window_.chkPermanentDelete.Click = [this] { chkPermanentDelete_Click(); };
  window_.chkTurbo.Click = [this] { chkTurbo_Click(); };
  window_.chkCollapseFolders.Click = [this] { chkCollapseFolders_Click(); };
  window_.mnuResetOptions.Click = [this] { mnuResetOptions_Click(); };
}

bool Processing_Options::Refuse(CheckBox& box, int value, const char* message) {
  message_box_.Show(message, Buttons::OK_Only, Icon::Critical);
  box.Set_Value(value);
  return false;
}

void Processing_Options::chkDeleteFolders_Click() {
  errors_.Run("chkDeleteFolders_Click", [&] {
    if (window_.chkDeleteFolders.Checked()) Delete_Folders_Ticked();
    enabling_.Enable_Check_Boxes();
    rows_.Follow_Choice();
  });
}

void Processing_Options::Delete_Folders_Ticked() {
  const int marked = marking_.Count_Selected_Nodes();
  if (marked > 0) {
    const std::string question = marked == 1
                                     ? "There is currently 1 marked folder that will be deleted.  Unmark it?"
                                     : "There are currently " + Format_Count(marked) +
                                           " marked folders that will be deleted.  Unmark them?";
    if (message_box_.Show(question, Buttons::Yes_No) == Answer::Yes) marking_.mnuUnmark_Click();
    // What ran while the question was open may have ended with the option off.
    if (!window_.chkDeleteFolders.Checked()) return;
  }
  for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
    if (!tree_.Exists(node) || !tree_.Checked(node)) continue;
    if (marking_.Check_Root_Node(node) || folder_tree_.Check_Default_Folder(records_[node].Folder)) {
      Refuse(window_.chkDeleteFolders, 0,
             "Cannot mark \"Delete Folders\" while default folders are selected.");
      return;
    }
  }
  if (marking_.Check_For_Protected_Below()) {
    Refuse(window_.chkDeleteFolders, 0,
           "Cannot mark \"Delete Folders\" while a marked folder holds a protected folder.");
    return;
  }
  if (tree_.Exists(1) && marking_.Check_For_Unmarked_Child(1)) {
    Refuse(
        window_.chkDeleteFolders, 0,
        "Cannot mark \"Delete Folders\" while there is any unmarked child folder of a marked parent folder.");
    return;
  }
  Force({{&window_.chkSelectByRow, 0},
         {&window_.chkMarkSubFolders, 1},
         {&window_.chkCollapseFolders, 0},
         {&window_.chkTurbo, 0},
         {&window_.chkPermanentDelete, 1},
         {&window_.chkConfirmItems, 0},
         {&window_.chkSelectUnread, 1},
         {&window_.chkSelectFlagged, 1},
         {&window_.chkSelectSubject, 0},
         {&window_.chkSelectDate, 0},
         {&window_.chkSelectType, 0}});
}

void Processing_Options::chkPermanentDelete_Click() {
  errors_.Run("chkPermanentDelete_Click", [&] {
    if (!window_.chkPermanentDelete.Checked()) {
      for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
        if (!tree_.Exists(node) || deleted_items_.Allow_Deleted_Items_Folder(node)) continue;
        Refuse(window_.chkPermanentDelete, 1,
               "Cannot unckeck Permanent Delete box while \"Deleted Items\" is selected.");
        return;
      }
      if (window_.chkSelectByRow.Checked()) {
        FlexGrid& grid = window_.grdItems;
        const No_Redraw no_redraw(grid);
        for (int row = 1; row < grid.Rows(); ++row)
          if (grid.Row_At(row).marked && deleted_items_.Is_Deleted_Items_Folder(grid.RowData(row)))
            grid.Set_Mark(row, false);
        rows_.Paint_Entire_Grid();
      }
    }
    rows_.Follow_Choice();
  });
}

void Processing_Options::chkTurbo_Click() {
  errors_.Run("chkTurbo_Click", [&] {
    if (window_.chkTurbo.Checked()) {
      Force({{&window_.chkSelectByRow, 0},
             {&window_.chkDeleteFolders, 0},
             {&window_.chkPermanentDelete, 1},
             {&window_.chkConfirmItems, 0},
             {&window_.chkSelectUnread, 1},
             {&window_.chkSelectFlagged, 1},
             {&window_.chkSelectDate, 0},
             {&window_.chkSelectSubject, 0},
             {&window_.chkSelectType, 0}});
    }
    enabling_.Enable_Check_Boxes();
    rows_.Follow_Choice();
  });
}

void Processing_Options::chkCollapseFolders_Click() {
  errors_.Run("chkCollapseFolders_Click", [&] {
    if (!window_.chkCollapseFolders.Checked()) return;
    for (int node = 1; node <= tree_.Upper_Bound(); ++node)
      if (tree_.Exists(node) && folder_tree_.Get_Folder_Item_Count(node, true) >= 1)
        tree_.Set_Expanded(node, true);
  });
}

void Processing_Options::mnuResetOptions_Click() {
  errors_.Run("mnuResetOptions_Click", [&] {
    const No_Redraw no_redraw(window_.grdItems);
    enabling_.Set_Checkbox_Values();
  });
}

void Processing_Options::Put_Away_Dangerous_Options() {
  errors_.Run("Put_Away_Dangerous_Options", [&] {
    window_.chkTurbo.Set_Value(0);
    window_.chkDeleteFolders.Set_Value(0);
    if (!window_.chkPermanentDelete.Checked()) return;
    // Deleted Items may be marked only for a permanent delete.
    for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
      if (!tree_.Exists(node) || !tree_.Checked(node) || !deleted_items_.Is_Deleted_Items_Folder(node))
        continue;
      tree_.Set_Checked(node, false);
      folder_tree_.Set_Node_Text(node);
      rows_.Change_Folder_Rows(node);
    }
    window_.chkPermanentDelete.Set_Value(0);
  });
}

}  // namespace tidyfold
