#include "clean/copy_first.h"

#include <set>
#include <utility>

#include "errors/automation_error.h"

namespace tidyfold {

namespace {

// From below the store's top folder down; with several stores, that folder's name comes first.
std::vector<std::string> Names_Of(MAPIFolder& folder, bool several_stores) {
  std::vector<std::string> names;
  std::string name = folder.Name();
  MAPIFolder_Ptr above = folder.Parent();
  const bool is_top = above == nullptr;
  for (; above != nullptr; above = above->Parent()) {
    names.insert(names.begin(), std::exchange(name, above->Name()));
  }
  if (several_stores || is_top) names.insert(names.begin(), name);
  return names;
}

}  // namespace

Copy_First::Copy_First(MainWindow& window, FolderData_Array& records, Item_Copies* copies,
                       Status_Line& status, Run_State& run, Program_Phase& phase, Message_Box& message_box,
                       Events& events, Error_Handler& errors)
    : window_(window),
      records_(records),
      copies_(copies),
      status_(status),
      run_(run),
      phase_(phase),
      message_box_(message_box),
      events_(events),
      errors_(errors) {}

void Copy_First::Wire() {
  window_.chkKeepCopy.Click = [this] { chkKeepCopy_Click(); };
}

void Copy_First::chkKeepCopy_Click() {
  errors_.Run("chkKeepCopy_Click", [&] {
    if (!window_.chkKeepCopy.Checked()) return;
    const auto directory = message_box_.Ask_Directory("Where to keep the copies", window_.copy_directory);
    if (directory) window_.copy_directory = *directory;
    if (!directory) window_.chkKeepCopy.Set_Value(0);
  });
}

std::vector<Folder_To_Copy> Copy_First::To_Copy(const Clean_Plan& plan) const {
  std::set<std::string> stores;
  for (int node = 1; node <= records_.Upper_Bound(); ++node)
    if (records_[node].Folder != nullptr) stores.insert(records_[node].Folder->StoreID());
  std::vector<Folder_To_Copy> folders;
  for (const Plan_Stop& stop : plan.stops) {
    if (stop.destination != Destination::For_Good && !plan.options.Takes_Everything()) continue;
    Folder_To_Copy folder;
    folder.folder = records_[stop.folder].Folder;
    folder.names = Names_Of(*folder.folder, stores.size() > 1);
    folder.whole = stop.way != Way::By_Row && stop.way != Way::Cached;
    for (const Planned_Item& item : stop.items) folder.entry_ids.push_back(item.entry_id);
    folders.push_back(std::move(folder));
  }
  return folders;
}

bool Copy_First::Keep(const Clean_Plan& plan) {
  const std::string& directory = plan.options.copy_directory;
  if (directory.empty()) return true;
  Kept_Copy kept;
  try {
    const std::vector<Folder_To_Copy> folders = To_Copy(plan);
    if (folders.empty()) return true;
    if (copies_ == nullptr) {
      kept.failure = "This store keeps no copies.";
    } else {
      kept = copies_->Keep(folders, directory, [&](std::int64_t done, std::int64_t total) {
        status_.Display_Copying_Status(done, total);
        events_.Do_Events();
        return phase_.Processing();
      });
    }
  } catch (const Automation_Error& error) {
    kept.failure = error.Description();
  }
  status_.Clear_Gauge();
  if (kept.cancelled || !phase_.Processing()) return false;
  if (kept.failure.empty()) {
    run_.Copy = kept.place;
    return true;
  }
  message_box_.Show(
      "The run was ended before anything was deleted, because the copy is not whole. " + kept.failure,
      Buttons::OK_Only, Icon::Critical);
  return false;
}

}  // namespace tidyfold
