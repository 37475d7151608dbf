#include "clean/deletion_strategies.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "cache/item_cache.h"
#include "cache/item_dates.h"
#include "cache/item_filters.h"
#include "clean/turbo_places.h"
#include "errors/automation_error.h"

namespace tidyfold {

namespace {

constexpr std::int32_t status_every = 100;

}  // namespace

Deletion_Strategies::Deletion_Strategies(MainWindow& window, FolderData_Array& records,
                                         Folder_Tree& folder_tree, Grid_Rows& rows, Item_Removal& removal,
                                         Run_Journal& journal, Status_Line& status, Run_State& run,
                                         Program_Phase& phase, Events& events, Error_Handler& errors)
    : window_(window),
      tree_(window.trvFolders),
      grid_(window.grdItems),
      records_(records),
      folder_tree_(folder_tree),
      rows_(rows),
      removal_(removal),
      journal_(journal),
      status_(status),
      run_(run),
      phase_(phase),
      events_(events),
      errors_(errors) {}

template <class Body>
void Deletion_Strategies::Run_Strategy(Literal name, Body&& body) {
  const bool ended = errors_.Run(name, [&] {
    try {
      body();
    } catch (...) {
      // What was changed before it broke off still counts, if it is kept.
      errors_.Try([&] { journal_.Settle(); });
      throw;
    }
    journal_.Settle();
    return true;
  });
  if (!ended) run_.NotAllDeleted = true;
  End_If_Useless();
}

void Deletion_Strategies::End_If_Useless() {
  if (journal_.Reason_To_End().empty()) return;
  run_.NotAllDeleted = true;
  phase_.Cancel_Run();
}

// Items to look at; one that is deleted counts once. What cannot be counted is reported when its turn comes.
std::int64_t Deletion_Strategies::Work_On(const Plan_Stop& stop) {
  if (stop.way == Way::Whole_Folder) return 1;
  if (stop.way == Way::Cached) return records_[stop.folder].CachedCount;
  if (stop.way != Way::Live) return stop.tally.items;
  std::int64_t items = 0;
  errors_.Try([&] { items = records_[stop.folder].Folder->Items()->Count(); });
  errors_.error.Clear();
  return items;
}

void Deletion_Strategies::Begin_Run(const Clean_Plan& plan) {
  removal_.Begin_Run(plan.options);
  std::int64_t total = 0;
  for (const Plan_Stop& stop : plan.stops) total += Work_On(stop);
  status_.Start_Gauge(plan.options.by_row ? grid_.Rows() - 1 : total);
}

void Deletion_Strategies::Show_Progress(int folder, const std::string& name, std::int32_t checked) {
  journal_.Settle_Due();
  status_.Display_Cleaning_Status(name, checked, records_[folder].DeletedFromFolder, run_.ProcessedCount);
}

// The cached record of an item that has left its folder becomes a hole; it is put back when the change was
// not kept.
bool Deletion_Strategies::Delete_Cached_Item(int folder, const Planned_Item& planned,
                                             ProcessError& process_error, std::function<void()> put_back) {
  FolderData& record = records_[folder];
  if (planned.item > record.CachedCount) return false;
  const ItemData shown = record.Cached(planned.item);
  if (shown.ItemClass == ItemData::deleted || shown.EntryID != planned.entry_id) return false;
  const bool left =
      removal_.Delete_Current_Item(folder, shown, process_error,
                                   [this, folder, item = planned.item, item_class = shown.ItemClass,
                                    put_back = std::move(put_back)](bool kept) {
                                     if (kept) return;
                                     records_[folder].Cached(item).ItemClass = item_class;
                                     if (put_back) put_back();
                                   });
  if (left) records_[folder].Cached(planned.item).ItemClass = ItemData::deleted;
  return left;
}

void Deletion_Strategies::Pack_Folder(int folder) {
  rows_.Remove_Folder_Rows(folder);
  Pack_Items_Array(records_[folder]);
}

void Deletion_Strategies::Delete_All_Items(const Plan_Stop& stop) {
  const int folder = stop.folder;
  Run_Strategy("Delete_All_Items", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    // Where the folder has been read, only what was counted goes, and not what arrives meanwhile.
    std::unordered_map<std::string, ItemData> planned;
    for (const Planned_Item& item : stop.items) planned[item.entry_id] = records_[folder].Cached(item.item);
    // Nothing that is known of the items holds any more; the folder is read again after the run.
    rows_.Remove_Folder_Rows(folder);
    records_[folder].Reload = true;
    records_[folder].DeletedFromFolder = 0;
    const MAPIFolder_Ptr object = records_[folder].Folder;
    const std::string name = object->Name(), store_id = object->StoreID();
    const Items_Ptr items = object->Items();
    Turbo_Places places(*items);
    std::int32_t checked = 0;
    const auto failed = [&] {
      removal_.Failed(process_error, "Turbo Delete - Unable to delete item", "Folder - " + name);
    };
    const auto shown = [&] {
      if (stop.exact) return planned.at(places.EntryID());
      ItemData data;
      data.EntryID = places.EntryID();
      data.ItemClass = places.Current().Class();
      data.Subject = places.Current().Subject();
      data.ItemDate = Get_Item_Date(places.Current(), data.ItemClass);
      return data;
    };
    // Some stores only move what is removed by its place; the first item that goes tells it.
    bool told = false, moves = false;
    std::int32_t in_deleted_items = 0;
    errors_.Try([&] { in_deleted_items = removal_.Deleted_Items_Count(folder); });
    const auto remove = [&] {
      if (!places.Is_Still_There()) return;
      if (stop.exact && !planned.contains(places.EntryID())) return;
      removal_.Demand_Unprotected(folder);
      const ItemData data = shown();
      std::int64_t number = journal_.Note(folder, data, moves ? Item_Action::Moved : Item_Action::Deleted);
      journal_.Before_Change(store_id);
      try {
        places.Remove();
      } catch (const Automation_Error& error) {
        journal_.Set_Result(number, Item_Result::Failed, error.Description());
        throw;
      }
      if (!std::exchange(told, true)) {
        moves = removal_.Was_Only_Moved(folder, data, in_deleted_items);
        if (moves) {
          records_[records_[folder].DeletedItemsIndex].Reload = true;
          journal_.Set_Result(number, Item_Result::Failed, "Its store has only moved it to Deleted Items.");
          number = journal_.Note(folder, data, Item_Action::Moved);
        }
      }
      const auto settled = [this, folder, number, moved = moves](const Change_Outcome& outcome) {
        journal_.Set_Result(number, outcome.kept ? Item_Result::Done : Item_Result::Failed, outcome.reason,
                            moved ? outcome.new_entry_id : "");
        if (!outcome.kept) return;
        ++run_.ProcessedCount;
        if (moved) ++run_.MovedInstead;
        ++records_[folder].DeletedFromFolder;
      };
      journal_.Pending(store_id, data.EntryID, settled);
    };
    bool more = true;
    const auto next = [&] {
      // A place that cannot be read is passed over.
      while (phase_.Processing() && !errors_.Try([&] { more = places.Next(); })) failed();
    };
    for (next(); more && phase_.Processing();) {
      ++checked;
      status_.Move_Gauge();
      if (!errors_.Try(remove)) failed();
      next();
      if (checked % status_every != 0) continue;
      Show_Progress(folder, name, checked);
      events_.Do_Events();
      places.Yielded();
    }
  });
}

void Deletion_Strategies::Delete_Selected_Items_By_MAPIFolder(const Plan_Stop& stop,
                                                              const Run_Options& options) {
  const int folder = stop.folder;
  // Items are found by their place in the folder, which need not be their place in the cache.
  std::unordered_set<std::string> gone;
  Run_Strategy("Delete_Selected_Items_By_MAPIFolder", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    const MAPIFolder_Ptr object = records_[folder].Folder;
    const std::string name = object->Name();
    const Items_Ptr items = object->Items();
    std::int32_t checked = 0;
    records_[folder].DeletedFromFolder = 0;
    for (std::int32_t i = items->Count(); i >= 1 && phase_.Processing(); --i) {
      ++checked;
      status_.Move_Gauge();
      ItemData data;
      const bool read = errors_.Try([&] {
        const Item_Ptr item = items->Item(i);
        data.Subject = item->Subject();
        data.ItemClass = item->Class();
        data.ItemDate = Get_Item_Date(*item, data.ItemClass);
        data.Unread = Check_Unread(*item, errors_);
        data.Flagged = Check_Flagged(*item, data.ItemClass, errors_);
        data.EntryID = item->EntryID();
      });
      if (!read) {
        // Items that another program has taken away meanwhile were never chosen.
        if (!Is_Beyond_End(*items, i))
          removal_.Failed(process_error, "Filtered Delete - Set Object", "Folder - " + name);
      } else if (options.filter.Passes(data)) {
        removal_.Delete_Current_Item(folder, data, process_error, [&gone, id = data.EntryID](bool kept) {
          if (kept) gone.insert(id);
        });
      }
      events_.Do_Events();
      if (checked % status_every == 0) Show_Progress(folder, name, checked);
    }
    journal_.Settle();
    Show_Progress(folder, name, checked);
  });
  for (std::int32_t item = 1; !gone.empty() && item <= records_[folder].CachedCount; ++item) {
    ItemData& data = records_[folder].Cached(item);
    if (gone.contains(data.EntryID)) data.ItemClass = ItemData::deleted;
  }
}

// Keeps the error that is being looked into.
bool Deletion_Strategies::Is_Beyond_End(Items& items, std::int32_t position) {
  const Current_Error error = errors_.error;
  bool beyond = false;
  errors_.Try([&] { beyond = position > items.Count(); });
  errors_.error = error;
  return beyond;
}

void Deletion_Strategies::Delete_Filtered_Items_By_FolderData_Array(const Plan_Stop& stop) {
  const int folder = stop.folder;
  Run_Strategy("Delete_Filtered_Items_By_FolderData_Array", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    const std::string name = records_[folder].Folder->Name();
    records_[folder].DeletedFromFolder = 0;
    auto planned = stop.items.begin();
    for (std::int32_t item = 1; item <= records_[folder].CachedCount && phase_.Processing(); ++item) {
      status_.Move_Gauge();
      if (planned != stop.items.end() && planned->item == item)
        Delete_Cached_Item(folder, *planned++, process_error, {});
      events_.Do_Events();
      if (item % status_every == 0) Show_Progress(folder, name, item);
    }
    journal_.Settle();
    window_.sbStatusBar.Set_Panel_Text(1, "");
    window_.sbStatusBar.Set_Panel_Text(2, "");
  });
}

// The rows are the order in which a person sees the items; the plan says which of them go.
void Deletion_Strategies::Delete_Filtered_Items_By_Row(const Clean_Plan& plan) {
  std::set<int> worked_on;
  Run_Strategy("Delete_Filtered_Items_By_Row", [&] {
    ProcessError process_error = errors_.Make_Process_Error();
    window_.sbStatusBar.Set_Panel_Text(1, "Cleaning Items");
    std::map<std::pair<int, std::int32_t>, const Planned_Item*> planned;
    for (const Plan_Stop& stop : plan.stops)
      for (const Planned_Item& item : stop.items) planned[{stop.folder, item.item}] = &item;
    std::int32_t processed = 0;
    for (int row = grid_.Rows() - 1; row >= 1 && phase_.Processing(); --row) {
      if (row >= grid_.Rows()) continue;
      const GridRow at = grid_.Row_At(row);
      ++processed;
      status_.Move_Gauge();
      if (const auto found = planned.find({at.row_data, at.item}); found != planned.end()) {
        const auto mark = [this, row, at](bool marked) {
          if (row >= grid_.Rows() || grid_.Row_At(row).item != at.item) return;
          grid_.Set_Mark(row, marked);
          rows_.Paint_Row(row);
        };
        if (Delete_Cached_Item(at.row_data, *found->second, process_error, [mark] { mark(true); })) {
          worked_on.insert(at.row_data);
          mark(false);
          folder_tree_.Take_From_Count(at.row_data);
        }
        events_.Do_Events();
      }
      if (row % status_every != 0) continue;
      journal_.Settle_Due();
      status_.Display_Delete_By_Selected_Status(processed, run_.ProcessedCount);
    }
  });
  for (const int folder : worked_on) {
    Pack_Folder(folder);
    folder_tree_.Set_Node_Text(folder);
  }
  if (!worked_on.empty()) run_.ItemsDeleted = true;
}

void Deletion_Strategies::Delete_Selected_Folder(const Plan_Stop& stop) {
  const int node = stop.folder;
  Run_Strategy("Delete_Selected_Folder", [&] {
    status_.Move_Gauge();
    ProcessError process_error = errors_.Make_Process_Error();
    const MAPIFolder_Ptr folder = records_[node].Folder;
    MAPIFolder_Ptr parent;
    Folders_Ptr siblings;
    std::string name;
    const auto refuse = [](const char* reason) {
      throw Automation_Error(automation_error::no_access, reason, application_title);
    };
    const auto step = [&](const char* label, auto&& work) {
      if (errors_.Try(work)) return true;
      removal_.Failed(process_error, label, "Folder - " + name);
      tree_.Set_Checked(node, false);
      folder_tree_.Set_Node_Text(node);
      return false;
    };
    const bool removed = step("Delete Folder - Set Parent",
                              [&] {
                                name = folder->Name();
                                parent = folder->Parent();
                                if (parent == nullptr) refuse("A store's top folder cannot be deleted.");
                                if (records_[node].Role != 0 || Is_Default_Folder_Name(name))
                                  refuse("A default folder cannot be deleted.");
                                removal_.Demand_Unprotected(node);
                              }) &&
                         step("Delete Folder - Set Collection", [&] { siblings = parent->Folders(); }) &&
                         step("Delete Folder - Remove", [&] {
                           // Whatever lies below was confirmed, deleted or kept on its own before.
                           if (folder->Folders()->Count() > 0)
                             refuse("The folder still holds folders that were not deleted.");
                           Remove_Folder(stop, *folder, *siblings);
                         });
    if (!removed) return;
    const int parent_node = tree_.Parent(node);
    rows_.Remove_Folder_Rows(node);
    folder_tree_.Remove_Folder_Node(node);
    if (!tree_.Exists(rows_.CurrentNodeIndex)) rows_.CurrentNodeIndex = 0;
    folder_tree_.Set_Node_Text(parent_node);
  });
}

// By position, which is read together with the identity that stands there. The tree follows only when the
// store has kept it and the folder is really gone.
void Deletion_Strategies::Remove_Folder(const Plan_Stop& stop, MAPIFolder& folder, Folders& siblings) {
  const std::string entry_id = folder.EntryID(), store_id = folder.StoreID();
  const auto place_of = [&] {
    for (std::int32_t i = siblings.Count(); i >= 1; --i)
      if (siblings.Item(i)->EntryID() == entry_id) return i;
    return 0;
  };
  const std::int32_t place = place_of();
  if (place == 0)
    throw Automation_Error(automation_error::not_found, "The folder is no longer there.", application_title);
  std::vector<std::int64_t> numbers{journal_.Note_Folder(stop.folder)};
  for (const Planned_Item& item : stop.items)
    numbers.push_back(
        journal_.Note(stop.folder, records_[stop.folder].Cached(item.item), Item_Action::Deleted));
  const auto set_results = [&](Item_Result result, const std::string& reason) {
    for (const std::int64_t number : numbers) journal_.Set_Result(number, result, reason);
  };
  bool lasts = false;
  try {
    journal_.Before_Change(store_id);
    siblings.Remove(place);
    journal_.Pending(store_id, entry_id, [&](const Change_Outcome& outcome) {
      lasts = outcome.kept;
      if (lasts) ++run_.ProcessedCount;
      set_results(lasts ? Item_Result::Done : Item_Result::Failed, outcome.reason);
    });
    journal_.Settle();
  } catch (const Automation_Error& error) {
    // What the store goes on to do once the removal has been kept, such as clearing up, may fail on its own.
    if (!lasts) {
      set_results(Item_Result::Failed, error.Description());
      throw;
    }
  }
  if (place_of() != 0)
    throw Automation_Error(automation_error::call_failed,
                           "The store says that it has removed the folder, but it is still there.",
                           application_title);
}

}  // namespace tidyfold
