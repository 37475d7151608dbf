#include "clean/deletion_strategies.h"

#include <algorithm>
#include <set>
#include <utility>

#include "cache/item_cache.h"
#include "cache/item_dates.h"
#include "errors/automation_error.h"

namespace tidyfold {

namespace {

constexpr std::int32_t status_every = 100;

}  // namespace

Deletion_Strategies::Deletion_Strategies(MainWindow& window, FolderData_Array& records,
                                         Folder_Tree& folder_tree, Outlook_Session& session,
                                         Item_Filters& filters, Grid_Rows& rows, Safety_Checks& checks,
                                         Status_Line& status, Run_State& run, Events& events,
                                         Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      grid_(window.grdItems),
      records_(records),
      folder_tree_(folder_tree),
      session_(session),
      filters_(filters),
      rows_(rows),
      checks_(checks),
      status_(status),
      run_(run),
      events_(events),
      errors_(errors) {}

template <class Body>
void Deletion_Strategies::Run_Strategy(Literal name, Body&& body) {
  const bool ended = errors_.Run(name, [&] {
    body();
    return true;
  });
  if (!ended) run_.NotAllDeleted = true;
}

void Deletion_Strategies::Failed(ProcessError& process_error, std::string_view process,
                                 std::string_view item) {
  run_.NotAllDeleted = true;
  process_error.DisplayProcessingError(process, item);
  errors_.error.Clear();
}

// Items to look at in a marked folder; one that is deleted counts once. What cannot be counted is reported
// when its turn comes.
std::int64_t Deletion_Strategies::Work_On(int index) {
  const FolderData& record = records_[index];
  if (record.Folder == nullptr) return 0;
  if (window_.chkDeleteFolders.Checked()) return 1;
  if (record.Loaded && !window_.chkTurbo.Checked()) return record.CachedCount;
  std::int64_t items = 0;
  errors_.Try([&] { items = record.Folder->Items()->Count(); });
  errors_.error.Clear();
  return items;
}

void Deletion_Strategies::Begin_Run() {
  is_deleted_items_.clear();
  std::int64_t total = 0;
  if (window_.chkSelectByRow.Checked()) {
    total = grid_.Rows() - 1;
  } else {
    for (int node = 1; node <= tree_.Upper_Bound() && run_.Processing; ++node)
      if (tree_.Exists(node) && tree_.Checked(node)) total += Work_On(folder_tree_.Get_Node_Index(node));
  }
  status_.Start_Gauge(total);
}

// The item is found by its identifiers and nothing else. It must still lie in the folder that the person saw
// it in; one that lies in Deleted Items would be gone for good, so without Permanent Delete it is left there.
Deletion_Strategies::Outcome Deletion_Strategies::Delete_Current_Item(int index, const std::string& entry_id,
                                                                      const std::string& subject,
                                                                      ProcessError& process_error) {
  return errors_.Run("Delete_Current_Item", [&] {
    Outcome outcome;
    Item_Ptr item;
    Answer answer = Answer::No;
    const bool done = errors_.Try([&] {
      const MAPIFolder_Ptr folder = records_[index].Folder;
      item = session_.name_space->GetItemFromID(entry_id, folder->StoreID());
      answer = checks_.Confirm_Current_Item(*item);
      if (answer == Answer::Cancel) {
        run_.Processing = false;
        run_.Cancelled = true;
      }
      // An item that could not even be asked about was reported there and stays.
      if (answer == Answer{}) run_.NotAllDeleted = true;
      if (answer == Answer::Yes && run_.Processing) Remove_Item(index, *item, entry_id, outcome);
    });
    if (!done) {
      Failed(process_error,
             window_.chkPermanentDelete.Checked() ? "Filtered Delete - Delete" : "Filtered Delete - Move",
             subject);
    }
    return outcome;
  });
}

// A store may be asked across a network or another program: once for all items of a folder.
bool Deletion_Strategies::Is_Deleted_Items(int index) {
  auto known = is_deleted_items_.find(index);
  if (known == is_deleted_items_.end())
    known = is_deleted_items_.emplace(index, records_[index].Folder->Name() == deleted_items_name).first;
  return known->second;
}

void Deletion_Strategies::Remove_Item(int index, Item& item, const std::string& entry_id, Outcome& outcome) {
  const MAPIFolder_Ptr folder = records_[index].Folder;
  const std::string store_id = folder->StoreID();
  if (item.Parent()->EntryID() != folder->EntryID()) {
    throw Automation_Error(automation_error::not_found,
                           "The item is no longer in this folder. Refresh, and look for it again.",
                           application_title);
  }
  const bool permanent = window_.chkPermanentDelete.Checked();
  const bool already_in_deleted_items = Is_Deleted_Items(index);
  if (already_in_deleted_items && !permanent) {
    throw Automation_Error(automation_error::no_access,
                           "Items in Deleted Items can only be deleted permanently.", application_title);
  }
  item.Delete();
  outcome.left_folder = true;
  // A folder of that name deeper in the tree is not where the store puts what it deletes.
  const int wastebasket = records_[index].DeletedItemsIndex;
  const bool was_last_stop = already_in_deleted_items && (wastebasket == 0 || wastebasket == index);
  if (!was_last_stop) {
    // What only passes through leaves Deleted Items as it was.
    const bool reload = wastebasket != 0 && std::exchange(records_[wastebasket].Reload, true);
    if (permanent) {
      session_.name_space->GetItemFromID(entry_id, store_id)->Delete();
      if (wastebasket != 0) records_[wastebasket].Reload = reload;
    }
  }
  outcome.deleted = true;
}

// The cached record of an item that has left its folder becomes a hole.
Deletion_Strategies::Outcome Deletion_Strategies::Delete_Cached_Item(int index, std::int32_t item,
                                                                     ProcessError& process_error) {
  const std::string entry_id = records_[index].Cached(item).EntryID;
  const Outcome outcome =
      Delete_Current_Item(index, entry_id, records_[index].Cached(item).Subject, process_error);
  if (outcome.left_folder) records_[index].Cached(item).ItemClass = ItemData::deleted;
  if (outcome.deleted) ++run_.ProcessedCount;
  return outcome;
}

// The same for items that were found by their place in Items, which need not be their place in the cache.
void Deletion_Strategies::Note_Deleted_Records(int index, const std::unordered_set<std::string>& gone) {
  FolderData& record = records_[index];
  for (std::int32_t item = 1; !gone.empty() && item <= record.CachedCount; ++item)
    if (gone.contains(record.Cached(item).EntryID)) record.Cached(item).ItemClass = ItemData::deleted;
}

void Deletion_Strategies::Pack_Folder(int index) {
  rows_.Remove_Folder_Rows(index);
  Pack_Items_Array(records_[index]);
}

// Yields between removals by position. Another program may take items out of the folder meanwhile and put new
// ones into it, which nobody has chosen: the place of the item that is next is looked up again.
std::int32_t Deletion_Strategies::Yield_In_Front_Of(Items& items, std::int32_t next) {
  const std::string entry_id = next >= 1 ? items.Item(next)->EntryID() : std::string();
  events_.Do_Events();
  if (next < 1) return next;
  for (std::int32_t place = std::min(next, items.Count()); place >= 1; --place)
    if (items.Item(place)->EntryID() == entry_id) return place;
  throw Automation_Error(automation_error::not_found,
                         "The folder was changed meanwhile. Refresh, and clean it again.", application_title);
}

void Deletion_Strategies::Delete_All_Items(int index) {
  Run_Strategy("Delete_All_Items", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    // Nothing that is known of the items holds any more; the folder is read again after the run.
    rows_.Remove_Folder_Rows(index);
    records_[index].Reload = true;
    const MAPIFolder_Ptr folder = records_[index].Folder;
    const std::string name = folder->Name();
    const Items_Ptr items = folder->Items();
    std::int32_t checked = 0;
    records_[index].DeletedFromFolder = 0;
    const auto failed = [&] {
      Failed(process_error, "Turbo Delete - Unable to delete item", "Folder - " + name);
    };
    for (std::int32_t i = items->Count(); i >= 1 && run_.Processing; --i) {
      ++checked;
      status_.Move_Gauge();
      if (errors_.Try([&] { items->Remove(i); })) {
        ++run_.ProcessedCount;
        ++records_[index].DeletedFromFolder;
      } else {
        failed();
      }
      if (checked % status_every != 0) continue;
      status_.Display_Cleaning_Status(name, checked, records_[index].DeletedFromFolder, run_.ProcessedCount);
      if (!errors_.Try([&] { i = Yield_In_Front_Of(*items, i - 1) + 1; })) {
        failed();
        break;
      }
    }
  });
}

void Deletion_Strategies::Delete_Selected_Items_By_MAPIFolder(int index) {
  std::unordered_set<std::string> gone;
  Run_Strategy("Delete_Selected_Items_By_MAPIFolder", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    const MAPIFolder_Ptr folder = records_[index].Folder;
    const std::string name = folder->Name();
    const Items_Ptr items = folder->Items();
    std::int32_t checked = 0;
    records_[index].DeletedFromFolder = 0;
    for (std::int32_t i = items->Count(); i >= 1 && run_.Processing; --i) {
      ++checked;
      status_.Move_Gauge();
      std::string subject, entry_id;
      bool passes = false;
      const bool read = errors_.Try([&] {
        const Item_Ptr item = items->Item(i);
        subject = item->Subject();
        const std::int32_t item_class = item->Class();
        const Date date = Get_Item_Date(*item, item_class);
        passes = filters_.Check_Item(item_class, date, subject, Check_Unread(*item, errors_));
        if (passes) entry_id = item->EntryID();
      });
      if (!read) {
        // Items that another program has taken away meanwhile were never chosen.
        if (!Is_Beyond_End(*items, i))
          Failed(process_error, "Filtered Delete - Set Object", "Folder - " + name);
      } else if (passes) {
        const Outcome outcome = Delete_Current_Item(index, entry_id, subject, process_error);
        if (outcome.left_folder) gone.insert(entry_id);
        if (outcome.deleted) {
          ++run_.ProcessedCount;
          ++records_[index].DeletedFromFolder;
        }
      }
      events_.Do_Events();
      if (checked % status_every == 0)
        status_.Display_Cleaning_Status(name, checked, records_[index].DeletedFromFolder,
                                        run_.ProcessedCount);
    }
    status_.Display_Cleaning_Status(name, checked, records_[index].DeletedFromFolder, run_.ProcessedCount);
  });
  Note_Deleted_Records(index, gone);
}

// Keeps the error that is being looked into.
bool Deletion_Strategies::Is_Beyond_End(Items& items, std::int32_t position) {
  const Current_Error error = errors_.error;
  bool beyond = false;
  errors_.Try([&] { beyond = position > items.Count(); });
  errors_.error = error;
  return beyond;
}

void Deletion_Strategies::Delete_Filtered_Items_By_FolderData_Array(int node, int index) {
  Run_Strategy("Delete_Filtered_Items_By_FolderData_Array", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    const std::string name = records_[index].Folder->Name();
    records_[index].DeletedFromFolder = 0;
    for (std::int32_t item = 1; item <= records_[index].CachedCount && run_.Processing; ++item) {
      status_.Move_Gauge();
      if (filters_.Check_Filtered_Record(node, index, item) &&
          Delete_Cached_Item(index, item, process_error).deleted)
        ++records_[index].DeletedFromFolder;
      events_.Do_Events();
      if (item % status_every == 0)
        status_.Display_Cleaning_Status(name, item, records_[index].DeletedFromFolder, run_.ProcessedCount);
    }
    window_.sbStatusBar.Set_Panel_Text(1, "");
    window_.sbStatusBar.Set_Panel_Text(2, "");
  });
}

void Deletion_Strategies::Delete_Filtered_Items_By_Row() {
  std::set<int> worked_on;
  Run_Strategy("Delete_Filtered_Items_By_Row", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    window_.sbStatusBar.Set_Panel_Text(1, "Cleaning Items");
    std::int32_t processed = 0, cleaned = 0;
    for (int row = grid_.Rows() - 1; row >= 1 && run_.Processing; --row) {
      if (row >= grid_.Rows()) continue;
      const GridRow at = grid_.Row_At(row);
      ++processed;
      status_.Move_Gauge();
      const bool points_at_item = at.marked && at.item >= 1 && at.item <= records_[at.row_data].CachedCount &&
                                  records_[at.row_data].Cached(at.item).ItemClass != ItemData::deleted;
      if (points_at_item) {
        const Outcome outcome = Delete_Cached_Item(at.row_data, at.item, process_error);
        if (outcome.left_folder) {
          worked_on.insert(at.row_data);
          grid_.Set_Mark(row, false);
          rows_.Paint_Row(row);
          folder_tree_.Set_Node_Text(folder_tree_.Get_Node_Index(at.row_data));
        }
        if (outcome.deleted) ++cleaned;
        events_.Do_Events();
      }
      if (row % status_every == 0) status_.Display_Delete_By_Selected_Status(processed, cleaned);
    }
  });
  for (const int index : worked_on) Pack_Folder(index);
  if (!worked_on.empty()) run_.ItemsDeleted = true;
}

void Deletion_Strategies::Delete_Selected_Folder(int index, int node) {
  Run_Strategy("Delete_Selected_Folder", [&] {
    status_.Move_Gauge();
    ProcessError process_error = errors_.Make_Process_Error();
    const MAPIFolder_Ptr folder = records_[index].Folder;
    MAPIFolder_Ptr parent;
    Folders_Ptr siblings;
    std::string name;
    const auto refuse = [](const char* reason) {
      throw Automation_Error(automation_error::no_access, reason, application_title);
    };
    const auto step = [&](const char* label, auto&& work) {
      if (errors_.Try(work)) return true;
      Failed(process_error, label, "Folder - " + name);
      tree_.Set_Checked(node, false);
      folder_tree_.Set_Node_Text(node);
      return false;
    };
    const bool removed = step("Delete Folder - Set Parent",
                              [&] {
                                name = folder->Name();
                                parent = folder->Parent();
                                if (parent == nullptr) refuse("A store's top folder cannot be deleted.");
                                if (Is_Default_Folder_Name(name))
                                  refuse("A default folder cannot be deleted.");
                              }) &&
                         step("Delete Folder - Set Collection", [&] { siblings = parent->Folders(); }) &&
                         step("Delete Folder - Remove", [&] {
                           // Whatever lies below was confirmed, deleted or kept on its own before.
                           if (folder->Folders()->Count() > 0)
                             refuse("The folder still holds folders that were not deleted.");
                           const std::string entry_id = folder->EntryID();
                           for (std::int32_t i = siblings->Count(); i >= 1; --i) {
                             if (siblings->Item(i)->EntryID() != entry_id) continue;
                             siblings->Remove(i);
                             return;
                           }
                           throw Automation_Error(automation_error::not_found,
                                                  "The folder is no longer there.", application_title);
                         });
    if (!removed) return;
    ++run_.ProcessedCount;
    const int parent_node = tree_.Parent(node);
    rows_.Remove_Folder_Rows(index);
    folder_tree_.Remove_Folder_Node(node);
    if (!tree_.Exists(rows_.CurrentNodeIndex)) rows_.CurrentNodeIndex = 0;
    folder_tree_.Set_Node_Text(parent_node);
  });
}

}  // namespace tidyfold
