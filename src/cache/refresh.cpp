#include "cache/refresh.h"

#include <utility>

#include "base/flag_scope.h"

namespace tidyfold {

Refresh::Refresh(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree, Item_Cache& cache,
                 Item_View& view, Interface_Loader& loader, Program_Phase& phase, Message_Box& message_box,
                 Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      cache_(cache),
      view_(view),
      loader_(loader),
      phase_(phase),
      message_box_(message_box),
      errors_(errors) {}

void Refresh::Wire() {
  window_.mnuRefresh.Click = [this] { mnuRefresh_Click(); };
  window_.mnuRefreshCurrent.Click = [this] { mnuRefreshCurrent_Click(); };
  window_.mnuStopLoading.Click = [this] { mnuStopLoading_Click(); };
}

void Refresh::mnuRefresh_Click() {
  errors_.Run("mnuRefresh_Click", [&] {
    if (phase_.Is_Idle()) {
      loader_.Load_Interface();
      return;
    }
    ReloadRequested = true;
    if (phase_.Is_Run()) return;
    cache_.StopCaching = cache_.InterruptCaching = true;
    phase_.Stop_Loading();
  });
}

void Refresh::mnuRefreshCurrent_Click() {
  errors_.Run("mnuRefreshCurrent_Click", [&] {
    const int selected = tree_.Selected_Item();
    if (selected != 0 && records_[selected].Folder != nullptr) records_[selected].Reload = true;
    // A run reloads what is marked for it when it ends.
    if (phase_.Is_Run()) return;
    Reload_Marked_Folders();
    Load_What_Is_Missing();
  });
}

void Refresh::mnuStopLoading_Click() {
  errors_.Run("mnuStopLoading_Click", [&] {
    if (!cache_.Running() || phase_.Is_Run() || asking_to_stop_) return;
    const Flag_Scope asking(asking_to_stop_);
    const Answer answer = message_box_.Show(
        "Stop loading items?\r\n\r\nWhat has been loaded can be used. Refresh Current goes on with the rest.",
        Buttons::Yes_No);
    if (answer != Answer::Yes || !cache_.Running()) return;
    cache_.LoadGivenUp = cache_.StopCaching = cache_.InterruptCaching = true;
    phase_.Stop_Loading();
  });
}

void Refresh::Catch_Up() {
  Reload_Marked_Folders();
  // Loading that the person has stopped goes on only when asked to.
  const bool load = std::exchange(reset_any_, false) && !cache_.LoadGivenUp;
  if (load || ReloadRequested) Load_What_Is_Missing();
}

// Loads what is not loaded; then rebuilds everything if that was asked for meanwhile.
void Refresh::Load_What_Is_Missing() {
  if (cache_.Running()) {
    // This is a yield of the loading run, which then looks again at what comes next.
    cache_.InterruptCaching = true;
    if (ReloadRequested) cache_.StopCaching = true;
    return;
  }
  if (phase_.Is_Loading()) return;
  if (!ReloadRequested) {
    cache_.Cache_Folder_Items();
    view_.Follow_Choice();
  }
  if (ReloadRequested && window_.frmRemoveItems.Loaded()) loader_.Load_Interface();
}

void Refresh::Reload_Marked_Folders() {
  errors_.Run("Reload_Marked_Folders", [&] {
    const No_Redraw no_redraw(window_.grdItems);
    bool any = false;
    for (int folder = 1; folder <= tree_.Upper_Bound(); ++folder) {
      if (!tree_.Exists(folder) || !records_[folder].Reload) continue;
      view_.Remove_Folder_Rows(folder);
      folder_tree_.Reset_Folder_Node(folder);
      folder_tree_.Set_Node_Text(folder);
      tree_.Set_Fore_Colour(folder, unloaded_colour);
      any = true;
    }
    // Rows that were picked by hand went with the others.
    if (any) view_.Follow_Choice();
    reset_any_ = reset_any_ || any;
  });
}

}  // namespace tidyfold
