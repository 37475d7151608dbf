#include "cache/item_cache.h"

#include <algorithm>
#include <utility>

#include "base/flag_scope.h"
#include "base/size_text.h"
#include "base/text.h"

namespace tidyfold {

void Pack_Items_Array(FolderData& record) {
  const auto begin = record.ItemCache.begin();
  const auto end = begin + std::min(record.CachedCount, record.Cache_Bound());
  const auto kept = std::remove_if(begin, end, [](const ItemData& data) { return data.ItemClass < 0; });
  for (auto hole = kept; hole != end; ++hole) {
    *hole = ItemData{};
    hole->ItemClass = ItemData::deleted;
  }
  record.CachedCount = static_cast<std::int32_t>(kept - begin);
  record.Judged = {};
}

Item_Cache::Item_Cache(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                       Outlook_Session& session, Item_View& view, Program_Phase& phase,
                       Message_Box& message_box, Events& events, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      records_(records),
      folder_tree_(folder_tree),
      session_(session),
      view_(view),
      phase_(phase),
      message_box_(message_box),
      events_(events),
      errors_(errors) {}

void Item_Cache::Cache_Folder_Items() {
  if (running_) return;
  const Flag_Scope running(running_);
  const Program_Phase::Scope loading(phase_, Phase::Loading);
  errors_.Run("Cache_Folder_Items", [&] {
    AllFoldersCached = LoadFailed = LoadGivenUp = false;
    // The command that found the store gone begins nothing new.
    StopCaching = InterruptCaching = errors_.Store_Gone();
    item_failure_reported_ = folder_failure_reported_ = false;
    for (int index = 1; index <= records_.Upper_Bound(); ++index) records_[index].LoadError = false;
    mapi_utils_.reset();
    companion_created_ = false;
    items_to_read_ = 0;
    for (int index = 1; index <= records_.Upper_Bound() && !StopCaching; ++index) {
      // What cannot be counted is reported when its folder's turn comes.
      const MAPIFolder_Ptr& folder = records_[index].Folder;
      errors_.Try([&] { items_to_read_ += folder == nullptr ? 0 : folder->Items()->Count(); });
    }
    bool found_work = true;
    while (!InterruptCaching && !AllFoldersCached && found_work) {
      found_work = Load_Next_Folders();
      if (StopCaching) {
        // Whoever stops loading goes on to show something else, unless the store has gone or it is given up.
        if (!errors_.Store_Gone() && !LoadGivenUp) return;
        break;
      }
      InterruptCaching = false;
      AllFoldersCached = All_Folders_Cached();
    }
    if (LoadFailed && !LoadGivenUp)
      message_box_.Show("Not all items could be loaded.", Buttons::OK_Only, Icon::Critical);
    window_.sbStatusBar.Set_Panel_Text(1, "");
    window_.sbStatusBar.Set_Panel_Text(2, "");
    window_.sbStatusBar.Set_Gauge(0, 0);
    view_.Display_Selected_Items_Total();
    mapi_utils_.reset();
    companion_created_ = false;
  });
}

// Only where mail is read item by item. It is shown without its sender where the companion is missing, or
// Outlook does not let it look.
Mapi_Utils* Item_Cache::Companion() {
  if (!std::exchange(companion_created_, true) &&
      !errors_.Try([&] { mapi_utils_ = session_.Create_Mapi_Utils(); }))
    Say_That_Senders_Are_Missing();
  return mapi_utils_.get();
}

// A person who can do nothing about it should not be told each time.
void Item_Cache::Say_That_Senders_Are_Missing() {
  if (errors_.Store_Gone() || std::exchange(missing_senders_told_, true)) return;
  message_box_.Show("Mail is shown without its sender.\r\n\r\n" + errors_.error.Description,
                    Buttons::OK_Only);
}

// One pass. False when there was nothing left that can be loaded.
bool Item_Cache::Load_Next_Folders() {
  const int selected = tree_.Selected_Item();
  if (selected != 0 && !Check_Cache_Status(selected)) {
    Cache_Selected_Folder(selected);
    return true;
  }
  if (const int marked = Get_Next_Unloaded_Checked_Node(); marked != 0) {
    Cache_Selected_Folder(marked);
    return true;
  }
  bool found = false;
  for (int folder = 1; folder <= tree_.Upper_Bound(); ++folder) {
    if (!tree_.Exists(folder) || Check_Cache_Status(folder)) continue;
    found = true;
    // A folder that cannot be read holds up no other.
    if (!Cache_Selected_Folder(folder) && !records_[folder].LoadError) break;
    events_.Do_Events();
    if (StopCaching || InterruptCaching) break;
  }
  return found;
}

int Item_Cache::Get_Next_Unloaded_Checked_Node() {
  return errors_.Run("Get_Next_Unloaded_Checked_Node", [&] {
    for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
      if (tree_.Exists(node) && tree_.Checked(node) && tree_.Fore_Colour(node) == unloaded_colour &&
          !Check_Cache_Status(node))
        return node;
    }
    return 0;
  });
}

bool Item_Cache::All_Folders_Cached() {
  return errors_.Run("All_Folders_Cached", [&] {
    for (int node = 1; node <= tree_.Upper_Bound(); ++node)
      if (tree_.Exists(node) && !records_[node].Loaded) return false;
    return true;
  });
}

void Item_Cache::Add_100_New_Rows(int folder) {
  errors_.Run("Add_100_New_Rows", [&] {
    if (!view_.In_View(folder)) return;
    const No_Redraw no_redraw(window_.grdItems);
    view_.Add_New_Records(folder);
  });
}

void Item_Cache::Display_Cache_Status(const std::string& folder_name, std::int32_t count) {
  errors_.Run("Display_Cache_Status", [&] {
    std::string text = "Loading Folder \"";
    text.append(Trim(folder_name)).append("\"");
    window_.sbStatusBar.Set_Panel_Text(1, text);
    window_.sbStatusBar.Set_Panel_Text(2, Format_Count(count));
    Show_Progress();
    events_.Do_Events();
  });
}

void Item_Cache::Show_Progress() {
  std::int64_t read = 0;
  for (int index = 1; index <= records_.Upper_Bound(); ++index) read += records_[index].CachedCount;
  window_.sbStatusBar.Set_Gauge(read, items_to_read_);
  view_.Follow_Choice();
}

}  // namespace tidyfold
