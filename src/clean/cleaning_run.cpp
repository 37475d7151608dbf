#include "clean/cleaning_run.h"

#include <utility>

namespace tidyfold {

Cleaning_Run::Cleaning_Run(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                           Deleted_Items_Folders& deleted_items, Item_Cache& cache, Grid_Rows& rows,
                           Folder_Marking& marking, Control_Enabling& enabling, Refresh& refresh,
                           Safety_Checks& checks, Deletion_Strategies& strategies, Run_State& run,
                           Message_Box& message_box, Events& events, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      deleted_items_(deleted_items),
      cache_(cache),
      rows_(rows),
      marking_(marking),
      enabling_(enabling),
      refresh_(refresh),
      checks_(checks),
      strategies_(strategies),
      run_(run),
      message_box_(message_box),
      events_(events),
      errors_(errors) {}

void Cleaning_Run::Wire() {
  window_.cmdRun.Click = [this] { cmdRun_Click(); };
  window_.mnuClean.Click = [this] { cmdRun_Click(); };
}

void Cleaning_Run::cmdRun_Click() {
  errors_.Run("cmdRun_Click", [&](Procedure& procedure) {
    if (window_.cmdRun.Caption() == "&Cancel") {
      procedure.Step("cmdRun_Click - Cancel");
      Offer_Cancel();
      return;
    }
    // A click while the questions of a run are open starts no second one.
    if (under_way_) return;
    under_way_ = true;
    errors_.Run("cmdRun_Click - Run", [&] { Start(); });
    under_way_ = false;
    strategies_.Clear_Gauge();
    const bool broken_off = std::exchange(run_.Processing, false);
    if (!window_.frmRemoveItems.Loaded()) return;
    if (broken_off) {
      window_.grdItems.Set_Redraw(true);
      enabling_.Enable_All_Controls(true);
    }
    // Also what was asked for while the run or its questions were open.
    refresh_.Reload_Marked_Folders();
    refresh_.Load_What_Is_Missing();
  });
}

void Cleaning_Run::Offer_Cancel() {
  if (asking_to_cancel_) return;
  asking_to_cancel_ = true;
  const Answer answer = message_box_.Show("Quit processing records?", Buttons::Yes_No);
  asking_to_cancel_ = false;
  if (answer != Answer::Yes) return;
  run_.Processing = false;
  run_.Cancelled = true;
}

void Cleaning_Run::Start() {
  run_.ProcessedCount = 0;
  run_.Cancelled = false;
  if (!checks_.Check_Screen()) return;
  if (!window_.frmRemoveItems.Loaded()) return;
  run_.Processing = true;
  run_.NotAllDeleted = false;
  run_.ItemsDeleted = false;
  run_.RunTrace = "START";
  // A loading run further out steps aside before anything that it reads is touched.
  if (cache_.Running()) cache_.InterruptCaching = true;
  rows_.Display_Selected_Items_Total();
  enabling_.Enable_All_Controls(false);
  deleted_items_.Assigne_Deleted_Items_Folders();
  strategies_.Begin_Run();
  if (window_.chkSelectByRow.Checked()) {
    strategies_.Delete_Filtered_Items_By_Row();
  } else {
    Process_Each_Node(1, 0);
  }
  if (!window_.frmRemoveItems.Loaded()) {
    run_.Processing = false;
    return;
  }
  // What fails from here on deletes nothing any more.
  const bool not_all_deleted = run_.NotAllDeleted;
  window_.grdItems.Set_Redraw(false);
  Rebuild_Window();
  window_.grdItems.Set_Redraw(true);
  if (not_all_deleted) message_box_.Show("Not all items could be deleted", Buttons::OK_Only, Icon::Critical);
  window_.sbStatusBar.Set_Panel_Text(2, "Total Processed:  " + std::to_string(run_.ProcessedCount));
  strategies_.Clear_Gauge();
  message_box_.Show(Summary());
  for (int panel = 1; panel <= StatusBar::panel_count; ++panel) window_.sbStatusBar.Set_Panel_Text(panel, "");
  run_.Processing = false;
  enabling_.Enable_All_Controls(true);
  const bool ascending = std::exchange(rows_.SortAscending, false);
  rows_.Set_Grid_Order();
  rows_.SortAscending = ascending;
  rows_.Set_Grid_Order();
}

void Cleaning_Run::Rebuild_Window() {
  if (!window_.chkDeleteFolders.Checked()) {
    // A folder that was declined or cleaned is unmarked, so its rows change; rows picked by hand stay picked
    // where nothing was deleted.
    if (run_.ItemsDeleted || !window_.chkSelectByRow.Checked()) {
      rows_.Remove_All_Rows();
      rows_.Add_All_Folders_Rows(Marker::None);
    }
    refresh_.Reload_Marked_Folders();
    return;
  }
  const int selected = tree_.Selected_Item();
  // The current folder may have gone, and a refused tick selects a folder without making it the current one;
  // the rows belong to the folder that the label names.
  if (rows_.CurrentNodeIndex != selected) {
    rows_.CurrentNodeIndex = selected;
    marking_.Fit_Columns_To_Folder(folder_tree_.Get_Node_Index(selected));
  }
  rows_.Remove_All_Rows();
  rows_.Add_All_Folders_Rows(Marker::None);
  window_.chkDeleteFolders.Set_Value(0);
  marking_.Set_Folder_Label(folder_tree_.Get_Node_Index(selected));
}

std::string Cleaning_Run::Summary() const {
  const std::string number = " " + std::to_string(run_.ProcessedCount);
  if (window_.chkDeleteFolders.Checked()) {
    if (run_.ProcessedCount == 0) return "No folders were deleted.";
    if (run_.ProcessedCount == 1) return "1 folder was deleted.";
    return number + " folders were deleted.";
  }
  if (run_.ProcessedCount == 0) return "No items were processed.";
  const std::string ending =
      window_.chkPermanentDelete.Checked() ? "deleted." : "moved to the \"Deleted Items\" folder.";
  if (run_.ProcessedCount == 1) return "1 item was " + ending;
  return number + " items were " + ending;
}

void Cleaning_Run::Process_Each_Node(int node, int depth) {
  const std::string label = "Process_Each_Node - " + tree_.Text(node);
  errors_.Run(std::string(label), [&](Procedure& procedure) {
    procedure.Step(label + " - Processing Children");
    for (int child = tree_.Child(node); child != 0 && run_.Processing;) {
      // The child's folder may be deleted on the way.
      const int next = tree_.Next(child);
      Process_Each_Node(child, depth + 1);
      child = next;
    }
    procedure.End_Step();
    run_.RunTrace += "\r\n" + std::string(static_cast<std::size_t>(depth) + 1, '*') + tree_.Text(node);
    if (!tree_.Checked(node) || !run_.Processing) return;
    const int index = folder_tree_.Get_Node_Index(node);
    // The mark goes also where the folder can no longer be asked for its name.
    const auto make_caption = [&, caption = tree_.Text(node)] {
      tree_.Set_Text(node, caption);
      folder_tree_.Set_Node_Text(node);
    };
    if (records_[index].Folder != nullptr) {
      tree_.Ensure_Visible(node);
      tree_.Set_Text(node, tree_.Text(node) + " <<<<");
      const int wastebasket = records_[index].DeletedItemsIndex;
      if (!window_.chkPermanentDelete.Checked() && wastebasket > 0) records_[wastebasket].Reload = true;
      events_.Do_Events();
      if (!run_.Processing) {
        make_caption();
        return;
      }
      const bool confirmed = checks_.Confirm_Current_Folder(index);
      // The run may have been cancelled while the question was open.
      if (confirmed && run_.Processing) {
        Clean_Marked_Node(node, index);
      } else if (run_.Processing) {
        strategies_.Pass_Over(index);
        tree_.Set_Checked(node, false);
      }
    }
    if (!tree_.Exists(node)) return;
    if (!window_.chkDeleteFolders.Checked() && !window_.chkShowAllFolders.Checked())
      tree_.Set_Checked(node, false);
    make_caption();
  });
}

void Cleaning_Run::Clean_Marked_Node(int node, int index) {
  if (window_.chkDeleteFolders.Checked()) {
    strategies_.Delete_Selected_Folder(index, node);
    return;
  }
  if (window_.chkTurbo.Checked()) {
    strategies_.Delete_All_Items(index);
  } else if (!records_[index].Loaded) {
    strategies_.Delete_Selected_Items_By_MAPIFolder(index);
    strategies_.Pack_Folder(index);
  } else {
    strategies_.Delete_Filtered_Items_By_FolderData_Array(node, index);
    strategies_.Pack_Folder(index);
  }
  run_.ItemsDeleted = true;
}

}  // namespace tidyfold
