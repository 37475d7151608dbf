#include "clean/item_removal.h"

#include <utility>

#include "cache/item_dates.h"
#include "cache/item_filters.h"
#include "errors/automation_error.h"

namespace tidyfold {

void Item_Removal::Begin_Run(const Run_Options& options) {
  options_ = options;
  is_deleted_items_.clear();
  unprotected_.clear();
}

void Item_Removal::Failed(ProcessError& process_error, std::string_view process, std::string_view item) {
  run_.NotAllDeleted = true;
  process_error.DisplayProcessingError(process, item);
  errors_.error.Clear();
}

// A store may be asked across a network or another program: once for all items of a folder.
bool Item_Removal::Is_Deleted_Items(int folder) {
  auto known = is_deleted_items_.find(folder);
  if (known == is_deleted_items_.end()) {
    const FolderData& record = records_[folder];
    const bool is = record.DeletedItemsIndex == folder || record.Role == default_folder_deleted_items ||
                    record.Folder->Name() == deleted_items_name;
    known = is_deleted_items_.emplace(folder, is).first;
  }
  return known->second;
}

// Where the marks are kept is asked once for all items of a folder, the record each time.
void Item_Removal::Demand_Unprotected(int folder) {
  if (unprotected_.contains(folder) && !protection_.Is_Protected(folder)) return;
  protection_.Demand_Unprotected(folder);
  unprotected_.insert(folder);
}

// Empty when the item is still what was shown. Where every question costs a call into another program, only
// the two are asked that decide whether it may go at all.
std::string Item_Removal::What_Has_Changed(int folder, Item& item, const ItemData& shown) {
  if (!session_.Same_Folder(item.Parent()->EntryID(), records_[folder].Folder->EntryID()))
    return "It lies in another folder now.";
  if (!shown.Unread && Check_Unread(item, errors_)) return "It has become unread.";
  if (session_.Asking_Costs_Calls()) return {};
  if (!shown.Flagged && Check_Flagged(item, shown.ItemClass, errors_))
    return "It has been flagged, or does not say.";
  if (item.Class() != shown.ItemClass) return "It is of another type now.";
  if (item.Subject() != shown.Subject) return "Its subject is another.";
  if (Get_Item_Date(item, shown.ItemClass) != shown.ItemDate) return "Its date is another.";
  return {};
}

bool Item_Removal::Delete_Current_Item(int folder, const ItemData& shown, ProcessError& process_error,
                                       std::function<void(bool left)> settled) {
  return errors_.Run("Delete_Current_Item", [&] {
    const Item_Action action = options_.permanent ? Item_Action::Deleted : Item_Action::Moved;
    bool left = false;
    std::int64_t number = 0;
    const bool done = errors_.Try([&] {
      const std::string store_id = records_[folder].Folder->StoreID();
      Item_Ptr item;
      try {
        item = session_.name_space->GetItemFromID(shown.EntryID, store_id);
      } catch (const Automation_Error& error) {
        if (error.Number() != automation_error::not_found) throw;
        journal_.Note_Changed(folder, shown, action, "It is no longer there.");
        return;
      }
      const std::string changed = What_Has_Changed(folder, *item, shown);
      if (!changed.empty()) {
        journal_.Note_Changed(folder, shown, action, changed);
        return;
      }
      const Answer answer = checks_.Confirm_Current_Item(*item, options_);
      if (answer == Answer::Cancel) {
        run_.Cancelled = true;
        phase_.Cancel_Run();
      }
      // An item that could not even be asked about was reported there and stays.
      if (answer == Answer{}) run_.NotAllDeleted = true;
      if (answer == Answer::No)
        journal_.Set_Result(journal_.Note(folder, shown, action), Item_Result::Declined);
      if (answer != Answer::Yes || !phase_.Processing()) return;
      number = journal_.Note(folder, shown, action);
      Remove(folder, *item, shown, number, settled, left);
    });
    if (!done) {
      if (number != 0) journal_.Set_Result(number, Item_Result::Failed, errors_.error.Description);
      Failed(process_error, options_.permanent ? "Filtered Delete - Delete" : "Filtered Delete - Move",
             shown.Subject);
    }
    return left;
  });
}

// An item that lies in Deleted Items would be gone for good, so without Permanent Delete it is left there. So
// is one whose store has no such folder: nobody knows what becomes of it.
void Item_Removal::Remove(int folder, Item& item, const ItemData& shown, std::int64_t number,
                          const std::function<void(bool left)>& settled, bool& left) {
  Demand_Unprotected(folder);
  const std::string store_id = records_[folder].Folder->StoreID();
  const bool already_in_deleted_items = Is_Deleted_Items(folder);
  if (already_in_deleted_items && !options_.permanent) {
    throw Automation_Error(automation_error::no_access,
                           "Items in Deleted Items can only be deleted permanently.", application_title);
  }
  // A folder of that name deeper in the tree is not where the store puts what it deletes.
  const int wastebasket = records_[folder].DeletedItemsIndex;
  const bool is_last_stop = already_in_deleted_items && (wastebasket == 0 || wastebasket == folder);
  if (wastebasket == 0 && !options_.permanent) {
    throw Automation_Error(automation_error::not_supported,
                           "The store has no Deleted Items folder that it could be moved to. With Permanent "
                           "Delete it is deleted for good.",
                           application_title);
  }
  journal_.Before_Change(store_id);
  // A store may give what it moves another identity, so that what was moved is known by what Move returns.
  Item_Ptr moved;
  if (is_last_stop || wastebasket == 0) {
    item.Delete();
  } else {
    moved = item.Move(*records_[wastebasket].Folder);
  }
  left = true;
  journal_.Pending(store_id, shown.EntryID, [this, settled, number](const Change_Outcome& outcome) {
    if (!outcome.kept) journal_.Set_Result(number, Item_Result::Failed, outcome.Why_Not_Kept());
    settled(outcome.kept);
  });
  std::string new_id;
  if (moved != nullptr) {
    // What only passes through leaves Deleted Items as it was.
    const bool reload = std::exchange(records_[wastebasket].Reload, true);
    if (options_.permanent) {
      journal_.Before_Change(store_id);
      moved->Delete();
      records_[wastebasket].Reload = reload;
    } else if (!errors_.Try([&] { new_id = moved->EntryID(); }) || new_id == shown.EntryID) {
      new_id.clear();
    }
  } else if (!is_last_stop) {
    Delete_What_Is_Left(shown.EntryID, store_id);
  }
  Count_When_Kept(folder, store_id, shown.EntryID, number, new_id);
}

// Where a store's wastebasket is not known, one may still have taken the item in.
void Item_Removal::Delete_What_Is_Left(const std::string& entry_id, const std::string& store_id) {
  Item_Ptr left;
  try {
    left = session_.name_space->GetItemFromID(entry_id, store_id);
  } catch (const Automation_Error& error) {
    if (error.Number() != automation_error::not_found) throw;
    return;
  }
  journal_.Before_Change(store_id);
  left->Delete();
}

std::int32_t Item_Removal::Deleted_Items_Count(int folder) {
  const int wastebasket = records_[folder].DeletedItemsIndex;
  return wastebasket == 0 || wastebasket == folder ? 0 : records_[wastebasket].Folder->Items()->Count();
}

// A store that gives it another identity shows it as the newest of its Deleted Items.
bool Item_Removal::Was_Only_Moved(int folder, const ItemData& removed, std::int32_t count_before) {
  const int wastebasket = records_[folder].DeletedItemsIndex;
  if (wastebasket == 0 || wastebasket == folder) return false;
  bool is_there = false;
  errors_.Try([&] {
    const std::string store_id = records_[folder].Folder->StoreID();
    try {
      session_.name_space->GetItemFromID(removed.EntryID, store_id);
      is_there = true;
    } catch (const Automation_Error& error) {
      if (error.Number() != automation_error::not_found) throw;
      const Items_Ptr items = records_[wastebasket].Folder->Items();
      const std::int32_t count = items->Count();
      is_there = count > count_before && items->Item(count)->Subject() == removed.Subject;
    }
  });
  errors_.error.Clear();
  return is_there;
}

// The second entry for the same item where it was moved and then deleted: if only the move is kept, the item
// has left its folder and lies in Deleted Items, and does not count.
void Item_Removal::Count_When_Kept(int folder, const std::string& store_id, const std::string& entry_id,
                                   std::int64_t number, const std::string& new_id) {
  journal_.Pending(store_id, entry_id, [this, folder, number, new_id](const Change_Outcome& outcome) {
    if (outcome.kept) {
      ++run_.ProcessedCount;
      ++records_[folder].DeletedFromFolder;
      journal_.Set_Result(number, Item_Result::Done, {}, new_id.empty() ? outcome.new_entry_id : new_id);
    } else {
      journal_.Set_Result(number, Item_Result::Failed, outcome.Why_Not_Kept());
      const int wastebasket = records_[folder].DeletedItemsIndex;
      if (wastebasket != 0) records_[wastebasket].Reload = true;
    }
  });
}

}  // namespace tidyfold
