#include "clean/cleaning_run.h"

#include <algorithm>
#include <utility>

#include "base/flag_scope.h"
#include "base/size_text.h"

namespace tidyfold {

Cleaning_Run::Cleaning_Run(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                           Deleted_Items_Folders& deleted_items, Planner& planner, Item_Filters& filters,
                           Item_Cache& cache, Grid_Rows& rows, Processing_Options& processing_options,
                           Refresh& refresh, Safety_Checks& checks, Copy_First& copy_first,
                           Deletion_Strategies& strategies, Run_Journal& journal, Run_State& run,
                           Program_Phase& phase, Message_Box& message_box, Events& events,
                           Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      deleted_items_(deleted_items),
      planner_(planner),
      filters_(filters),
      cache_(cache),
      rows_(rows),
      processing_options_(processing_options),
      refresh_(refresh),
      checks_(checks),
      copy_first_(copy_first),
      strategies_(strategies),
      journal_(journal),
      run_(run),
      phase_(phase),
      message_box_(message_box),
      events_(events),
      errors_(errors) {}

void Cleaning_Run::Wire() {
  window_.cmdRun.Click = [this] { cmdRun_Click(); };
  window_.mnuClean.Click = [this] { cmdRun_Click(); };
}

void Cleaning_Run::cmdRun_Click() {
  errors_.Run("cmdRun_Click", [&](Procedure& procedure) {
    if (phase_.Processing()) {
      procedure.Step("cmdRun_Click - Cancel");
      Offer_Cancel();
      return;
    }
    Begin(std::nullopt);
  });
}

void Cleaning_Run::Run_Plan(Clean_Plan plan) {
  errors_.Run("Run_Plan", [&] { Begin(std::move(plan)); });
}

void Cleaning_Run::Offer_Cancel() {
  if (asking_to_cancel_) return;
  const Flag_Scope asking(asking_to_cancel_);
  if (message_box_.Show("Quit processing records?", Buttons::Yes_No) != Answer::Yes) return;
  if (!phase_.Is_Run()) return;
  run_.Cancelled = true;
  phase_.Cancel_Run();
}

// A run that is refused, or that the person does not want, leaves everything as it was: it touches neither
// the loading nor its gauge.
void Cleaning_Run::Begin(std::optional<Clean_Plan> given) {
  // A click while the questions of a run are open, or while it ends, starts no second one.
  if (phase_.Is_Run()) return;
  {
    const Program_Phase::Scope asking(phase_, Phase::Asking);
    run_ = Run_State{};
    // What is shown and what is taken go by the same filter, also when a command's key came before the box
    // that was being filled in has lost the focus.
    filters_.Focus_Lost();
    plan_ = given ? *std::move(given) : planner_.Plan_Run();
    if (checks_.Check_Screen(plan_) && window_.frmRemoveItems.Loaded() && phase_.Now() == Phase::Asking &&
        journal_.Begin(plan_)) {
      const bool ended = errors_.Run("cmdRun_Click - Run", [&] {
        Run();
        return true;
      });
      if (!ended) run_.NotAllDeleted = true;
      // What fails from here on deletes nothing any more.
      if (window_.frmRemoveItems.Loaded()) errors_.Run("cmdRun_Click - Finish", [&] { Finish(); });
      strategies_.Clear_Gauge();
      journal_.End();
    }
    stops_.clear();
    plan_ = Clean_Plan{};
  }
  if (!window_.frmRemoveItems.Loaded()) return;
  window_.grdItems.Set_Redraw(true);
  rows_.Follow_Choice();
  // What was put off while the run or its questions were open.
  refresh_.Catch_Up();
}

void Cleaning_Run::Run() {
  run_.Began = true;
  run_.RunTrace = "START";
  // A loading run further out steps aside before anything that it reads is touched.
  if (cache_.Running()) cache_.InterruptCaching = true;
  phase_.Begin_Cleaning();
  rows_.Display_Selected_Items_Total();
  if (!copy_first_.Keep(plan_)) return;
  deleted_items_.Assigne_Deleted_Items_Folders();
  strategies_.Begin_Run(plan_);
  for (const Plan_Stop& stop : plan_.stops) stops_.emplace(stop.folder, &stop);
  const Item_Action action = plan_.options.permanent ? Item_Action::Deleted : Item_Action::Moved;
  for (const Kept_Item& kept : plan_.kept)
    journal_.Note_Changed(kept.folder, kept.shown, action, kept.reason);
  if (plan_.options.by_row) {
    strategies_.Delete_Filtered_Items_By_Row(plan_);
  } else {
    Process_Each_Node(1, 0);
  }
}

void Cleaning_Run::Finish() {
  const bool not_all_deleted = run_.NotAllDeleted;
  {
    const No_Redraw no_redraw(window_.grdItems);
    Rebuild_Window();
  }
  const std::string reason = journal_.Reason_To_End();
  if (!reason.empty()) message_box_.Show("The run was ended. " + reason, Buttons::OK_Only, Icon::Critical);
  if (!run_.WhyNotDeleted.empty()) message_box_.Show(run_.WhyNotDeleted, Buttons::OK_Only, Icon::Critical);
  if (not_all_deleted) message_box_.Show("Not all items could be deleted", Buttons::OK_Only, Icon::Critical);
  Say_What_Has_Changed();
  window_.sbStatusBar.Set_Panel_Text(2, "Total Processed:  " + Format_Count(run_.ProcessedCount));
  strategies_.Clear_Gauge();
  message_box_.Show(Summary());
  for (int panel = 1; panel <= StatusBar::panel_count; ++panel) window_.sbStatusBar.Set_Panel_Text(panel, "");
  processing_options_.Put_Away_Dangerous_Options();
  const bool ascending = std::exchange(rows_.SortAscending, false);
  rows_.Set_Grid_Order();
  rows_.SortAscending = ascending;
  rows_.Set_Grid_Order();
}

void Cleaning_Run::Rebuild_Window() {
  if (plan_.options.delete_folders && !plan_.options.turbo) {
    const int selected = tree_.Selected_Item();
    // The current folder may have gone, and a refused tick selects a folder without making it the current
    // one; the rows belong to the folder that the label names.
    if (rows_.CurrentNodeIndex != selected) {
      rows_.CurrentNodeIndex = selected;
      rows_.Fit_Columns_To_Folder(selected);
    }
    rows_.Remove_All_Rows();
    rows_.Add_All_Folders_Rows(Marker::None);
    folder_tree_.Set_Folder_Label(selected);
    return;
  }
  // A folder that was declined or cleaned is unmarked, so its rows change; rows picked by hand stay picked
  // where nothing was deleted.
  if (run_.ItemsDeleted || !plan_.options.by_row) {
    rows_.Remove_All_Rows();
    rows_.Add_All_Folders_Rows(Marker::None);
  }
  refresh_.Reload_Marked_Folders();
}

void Cleaning_Run::Say_What_Has_Changed() {
  const std::vector<std::string>& changed = run_.Changed;
  if (changed.empty()) return;
  std::string text = changed.size() == 1
                         ? "1 item was kept because it has changed since it was shown:\r\n"
                         : Format_Count(static_cast<std::int64_t>(changed.size())) +
                               " items were kept because they have changed since they were shown:\r\n";
  constexpr std::size_t most_named = 10;
  for (std::size_t i = 0; i < std::min(changed.size(), most_named); ++i) text += "\r\n" + changed[i];
  if (changed.size() > most_named)
    text += "\r\nand " + Format_Count(static_cast<std::int64_t>(changed.size() - most_named)) +
            " more, which the log of runs names.";
  message_box_.Show(text);
}

// The wording for items, also after a run that deleted folders: by the time it is shown, the program has
// switched Delete Folders off again.
std::string Cleaning_Run::Summary() const {
  if (run_.ProcessedCount == 0) return "No items were processed.";
  const std::string copy = run_.Copy.empty() ? "" : "\r\n\r\nA copy is in \"" + run_.Copy + "\".";
  const bool for_good = plan_.options.permanent || plan_.options.Takes_Everything();
  const auto sentence = [](std::int32_t count, bool deleted) {
    const std::string ending = deleted ? "deleted." : "moved to the \"Deleted Items\" folder.";
    return count == 1 ? "1 item was " + ending : " " + Format_Count(count) + " items were " + ending;
  };
  const std::int32_t moved = run_.MovedInstead, as_asked = run_.ProcessedCount - moved;
  if (moved == 0) return sentence(as_asked, for_good) + copy;
  return (as_asked == 0 ? "" : sentence(as_asked, for_good) + "\r\n") + sentence(moved, false) +
         "\r\n\r\nTheir store only moves what Turbo removes." + copy;
}

void Cleaning_Run::Process_Each_Node(int node, int depth) {
  const std::string label = "Process_Each_Node - " + tree_.Text(node);
  errors_.Run(std::string(label), [&](Procedure& procedure) {
    procedure.Step(label + " - Processing Children");
    for (int child = tree_.Child(node); child != 0 && phase_.Processing();) {
      // The child's folder may be deleted on the way.
      const int next = tree_.Next(child);
      Process_Each_Node(child, depth + 1);
      child = next;
    }
    procedure.End_Step();
    run_.RunTrace += "\r\n" + std::string(static_cast<std::size_t>(depth) + 1, '*') + tree_.Text(node);
    if (!phase_.Processing()) return;
    if (const auto stop = stops_.find(node); stop != stops_.end()) {
      Clean_Stop(*stop->second);
    } else if (tree_.Checked(node) && records_[node].Folder == nullptr) {
      tree_.Set_Checked(node, plan_.options.delete_folders || plan_.options.show_all_folders);
      folder_tree_.Set_Node_Text(node);
    }
  });
}

// Whatever ends the work on a folder, its caption loses the mark that shows it as the one being cleaned.
void Cleaning_Run::Clean_Stop(const Plan_Stop& stop) {
  const int node = stop.folder;
  const auto make_caption = [&, caption = tree_.Text(node)] {
    if (!tree_.Exists(node)) return;
    // Also where the folder can no longer be asked for its name.
    tree_.Set_Text(node, caption);
    folder_tree_.Set_Node_Text(node);
  };
  try {
    tree_.Ensure_Visible(node);
    tree_.Set_Text(node, tree_.Text(node) + " <<<<");
    const int wastebasket = records_[node].DeletedItemsIndex;
    if (stop.destination == Destination::Deleted_Items && wastebasket > 0)
      records_[wastebasket].Reload = true;
    events_.Do_Events();
    if (phase_.Processing()) Confirm_And_Clean(stop);
  } catch (...) {
    run_.NotAllDeleted = true;
    make_caption();
    throw;
  }
  make_caption();
}

void Cleaning_Run::Confirm_And_Clean(const Plan_Stop& stop) {
  const Answer answer = checks_.Confirm_Current_Folder(stop, plan_.options);
  if (answer == Answer::Cancel) {
    run_.Cancelled = true;
    phase_.Cancel_Run();
  }
  // The run may have been cancelled while the question was open.
  if (!phase_.Processing()) return;
  if (answer == Answer::Yes) {
    Clean_Folder(stop);
  } else {
    strategies_.Pass_Over(stop);
    tree_.Set_Checked(stop.folder, false);
  }
  const bool stays_marked = plan_.options.delete_folders || plan_.options.show_all_folders;
  if (tree_.Exists(stop.folder) && !stays_marked) tree_.Set_Checked(stop.folder, false);
}

void Cleaning_Run::Clean_Folder(const Plan_Stop& stop) {
  if (stop.way == Way::Whole_Folder) return strategies_.Delete_Selected_Folder(stop);
  if (stop.way == Way::Turbo) {
    strategies_.Delete_All_Items(stop);
  } else {
    if (stop.way == Way::Live) {
      strategies_.Delete_Selected_Items_By_MAPIFolder(stop, plan_.options);
    } else {
      strategies_.Delete_Filtered_Items_By_FolderData_Array(stop);
    }
    strategies_.Pack_Folder(stop.folder);
  }
  run_.ItemsDeleted = true;
}

}  // namespace tidyfold
