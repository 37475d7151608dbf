#include "marking/refresh.h"

#include <utility>

namespace tidyfold {

Refresh::Refresh(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree, Item_Cache& cache,
                 Grid_Rows& rows, Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      cache_(cache),
      rows_(rows),
      message_box_(message_box),
      errors_(errors) {}

void Refresh::Wire() {
  window_.mnuRefresh.Click = [this] { mnuRefresh_Click(); };
  window_.mnuRefreshCurrent.Click = [this] { mnuRefreshCurrent_Click(); };
  window_.mnuStopLoading.Click = [this] { mnuStopLoading_Click(); };
}

void Refresh::mnuRefresh_Click() {
  errors_.Run("mnuRefresh_Click", [&] {
    if (!Run_Under_Way() && !Interface_Loading() && !cache_.Running()) {
      Load_Interface();
      return;
    }
    ReloadRequested = true;
    if (!Run_Under_Way()) cache_.StopCaching = cache_.InterruptCaching = true;
  });
}

void Refresh::mnuRefreshCurrent_Click() {
  errors_.Run("mnuRefreshCurrent_Click", [&] {
    const int selected = tree_.Selected_Item();
    if (selected != 0) {
      const int index = folder_tree_.Get_Node_Index(selected);
      if (records_[index].Folder != nullptr) records_[index].Reload = true;
    }
    // A run reloads what is marked for it when it ends.
    if (Run_Under_Way()) return;
    window_.grdItems.Set_Redraw(false);
    Reload_Marked_Folders();
    window_.grdItems.Set_Redraw(true);
    // Rows that were picked by hand went with the others.
    Enable_Command_Buttons();
    Load_What_Is_Missing();
  });
}

void Refresh::mnuStopLoading_Click() {
  errors_.Run("mnuStopLoading_Click", [&] {
    if (!cache_.Running() || Run_Under_Way() || std::exchange(asking_to_stop_, true)) return;
    const Answer answer = message_box_.Show(
        "Stop loading items?\r\n\r\nWhat has been loaded can be used. Refresh Current goes on with the rest.",
        Buttons::Yes_No);
    asking_to_stop_ = false;
    if (answer == Answer::Yes && cache_.Running())
      cache_.LoadGivenUp = cache_.StopCaching = cache_.InterruptCaching = true;
  });
}

void Refresh::Load_What_Is_Missing() {
  if (cache_.Running()) {
    // This is a yield of the loading run, which then looks again at what comes next.
    cache_.InterruptCaching = true;
    if (ReloadRequested) cache_.StopCaching = true;
    return;
  }
  if (Interface_Loading()) return;
  if (!ReloadRequested) {
    cache_.Cache_Folder_Items();
    rows_.Display_Empty_Text();
  }
  if (ReloadRequested && window_.frmRemoveItems.Loaded()) Load_Interface();
}

void Refresh::Reload_Marked_Folders() {
  errors_.Run("Reload_Marked_Folders", [&] {
    for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
      if (!tree_.Exists(node)) continue;
      const int index = folder_tree_.Get_Node_Index(node);
      if (!records_[index].Reload) continue;
      rows_.Remove_Folder_Rows(index);
      folder_tree_.Reset_Folder_Node(index);
      folder_tree_.Set_Node_Text(node);
      tree_.Set_Fore_Colour(node, unloaded_colour);
    }
  });
}

}  // namespace tidyfold
