#include "clean/taking_back_commands.h"

#include <limits>

#include "base/size_text.h"

namespace tidyfold {

void Taking_Back_Progress::Do_Events() {
  bar_.Set_Panel_Text(1, "Putting Items Back");
  bar_.Set_Panel_Text(2, Format_Count(taking_back_.Looked_At()));
  bar_.Set_Gauge(taking_back_.Looked_At(), taking_back_.To_Look_At());
  events_.Do_Events();
}

Taking_Back_Commands::Taking_Back_Commands(MainWindow& window, FolderData_Array& records,
                                           Deleted_Items_Folders& deleted_items, Grid_Rows& rows,
                                           Refresh& refresh, Item_Cache& cache, Taking_Back& taking_back,
                                           Deleted_Items_Limits& limits, Program_Phase& phase,
                                           Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      grid_(window.grdItems),
      records_(records),
      deleted_items_(deleted_items),
      rows_(rows),
      refresh_(refresh),
      cache_(cache),
      taking_back_(taking_back),
      limits_(limits),
      phase_(phase),
      message_box_(message_box),
      errors_(errors) {}

void Taking_Back_Commands::Wire() {
  window_.mnuTakeBack.Click = [this] { Take_Back_Run(std::nullopt); };
  window_.mnuPutBack.Click = [this] { mnuPutBack_Click(); };
  window_.mnuDeletedItemsLimit.Click = [this] { mnuDeletedItemsLimit_Click(); };
}

// Taking back is a run: it has the same phases, the same button ends it, and nothing else begins meanwhile.
template <class Work>
void Taking_Back_Commands::Run(Work&& work) {
  if (phase_.Is_Run()) return;
  Taking_Back_Report report;
  {
    const Program_Phase::Scope asking(phase_, Phase::Asking);
    // A loading run further out steps aside before anything that it reads is touched.
    if (cache_.Running()) cache_.InterruptCaching = true;
    phase_.Begin_Cleaning();
    report = work();
  }
  if (!window_.frmRemoveItems.Loaded()) return;
  Reload(report);
  for (const int panel : {1, 2}) window_.sbStatusBar.Set_Panel_Text(panel, "");
  window_.sbStatusBar.Set_Gauge(0, 0);
  rows_.Follow_Choice();
  refresh_.Catch_Up();
}

// What the window shows of the folders between which items have gone is read again; folders that were made
// are only in the tree when all of it is.
void Taking_Back_Commands::Reload(const Taking_Back_Report& report) {
  if (report.put_back == 0) return;
  if (report.folders_made) {
    refresh_.ReloadRequested = true;
    return;
  }
  const auto mark = [&](const std::string& store_id, const std::string& entry_id) {
    const int folder = window_.trvFolders.Find_Key("-:::-" + entry_id + "-:::-" + store_id);
    if (folder == 0) return;
    records_[folder].Reload = true;
    if (records_[folder].DeletedItemsIndex != 0) records_[records_[folder].DeletedItemsIndex].Reload = true;
  };
  deleted_items_.Assigne_Deleted_Items_Folders();
  for (const Logged_Folder& folder : report.folders) mark(folder.store_id, folder.entry_id);
}

void Taking_Back_Commands::Take_Back_Run(std::optional<std::int64_t> run) {
  errors_.Run("mnuTakeBack_Click", [&] { Run([&] { return taking_back_.Take_Back_Run(run); }); });
}

std::vector<Item_Identity> Taking_Back_Commands::Chosen_Rows() {
  const bool picked = rows_.Picked() > 0;
  std::vector<Item_Identity> items;
  for (int row = 1; row < grid_.Rows(); ++row) {
    const GridRow& at = grid_.Row_At(row);
    if (picked ? !at.marked : row != grid_.Row()) continue;
    const FolderData& record = records_[at.row_data];
    if (at.item < 1 || at.item > record.CachedCount || !deleted_items_.Is_Deleted_Items_Folder(at.row_data))
      continue;
    items.push_back({record.Cached(at.item).EntryID, record.Folder->StoreID()});
  }
  return items;
}

void Taking_Back_Commands::mnuPutBack_Click() {
  errors_.Run("mnuPutBack_Click", [&] {
    const std::vector<Item_Identity> items = Chosen_Rows();
    if (items.empty()) {
      message_box_.Show("Choose items in Deleted Items first. Put Back returns them to where they were.");
      return;
    }
    Run([&] { return taking_back_.Put_Back(items); });
  });
}

void Taking_Back_Commands::mnuDeletedItemsLimit_Click() {
  errors_.Run("mnuDeletedItemsLimit_Click", [&] {
    const int selected = window_.trvFolders.Selected_Item();
    if (selected == 0 || records_[selected].Folder == nullptr) {
      message_box_.Show("Select a folder of the store first: each store has a limit of its own.");
      return;
    }
    const std::string store_id = records_[selected].Folder->StoreID();
    const std::optional<std::int32_t> limit = message_box_.Ask_Number(
        "The most items that Deleted Items of this store may hold after a run (0: no limit):",
        limits_.Limit(store_id), 0, std::numeric_limits<std::int32_t>::max());
    if (limit) limits_.Set_Limit(store_id, *limit);
  });
}

}  // namespace tidyfold
