// How one folder is read.
#include <algorithm>
#include <utility>
#include <vector>

#include "base/text.h"
#include "cache/item_cache.h"
#include "cache/item_dates.h"
#include "cache/item_filters.h"
#include "errors/automation_error.h"

namespace tidyfold {

namespace {

constexpr std::int32_t batch = 100;
// A look whether something has moved takes three calls, a batch of rows one.
constexpr std::int32_t rows_between_looks = 5 * batch;
// Characters of its text that stand in the grid for an item that has no sender.
constexpr std::size_t text_characters = 20;
// A folder that changes faster than it can be read is not read for ever.
constexpr int most_readings = 4;

}  // namespace

// Part of reading a folder. One that fails is left alone until the next loading run; the first failure is
// reported for all. False after a failure that was not.
template <class Work>
bool Item_Cache::Attempt(int folder, Work&& work) {
  return errors_.Report_First(folder_failure_reported_, [&] {
    try {
      work();
    } catch (...) {
      records_[folder].LoadError = true;
      throw;
    }
  });
}

bool Item_Cache::Check_Cache_Status(int folder) {
  return errors_.Run("Check_Cache_Status", [&] {
    FolderData& record = records_[folder];
    if (record.Loaded || record.LoadError) return true;
    bool loaded = true;
    const bool answered = Attempt(folder, [&] {
      if (record.Folder == nullptr) return;
      const Items_Ptr items = record.Folder->Items();
      const std::int32_t count = items->Count();
      if (count > 0 && record.CachedCount == 0) {
        record.ItemCache.assign(static_cast<std::size_t>(count), ItemData{});
        loaded = false;
      } else {
        loaded = record.CachedCount == count && Has_Its_Place(*items, folder, count);
      }
    });
    if (answered && loaded) Finish_Folder(folder);
    return loaded;
  });
}

bool Item_Cache::Cache_Selected_Folder(int folder) {
  return errors_.Run("Cache_Selected_Folder", [&](Procedure& procedure) {
    if (records_[folder].LoadError) return false;
    bool finished = false;
    Attempt(folder, [&] {
      const MAPIFolder_Ptr object = records_[folder].Folder;
      const std::string name = object->Name();
      procedure.Step("Cache_Selected_Folder - " + name);
      Display_Cache_Status(name, records_[folder].CachedCount);
      if (InterruptCaching || records_[folder].Folder == nullptr) return;
      const Items_Ptr items = object->Items();
      for (int reading = 1; reading <= most_readings; ++reading) {
        if (!Read_Items(*items, name, folder)) return;
        // What has arrived since reading began is read too.
        if (items->Count() == records_[folder].CachedCount) break;
      }
      Finish_Folder(folder);
      finished = true;
    });
    return finished;
  });
}

// Reads as many items as the folder holds when reading begins. False when loading was broken off; then
// everything read so far counts, and reading goes on from there.
//
// Three things may happen on the way. A handler that runs in a yield, or in the box that reports a failure,
// may reset or remove the folder (Is_Touched); the person may turn to another folder or stop the loading
// (`stop`); and another program may add or take away items, so that positions shift. To ask about the last
// after every item would cost a call each. It is asked after every batch (of rows, after some) and wherever
// reading stops: `checked` is the last item known to stand where it was read, and what was read behind it is
// forgotten and read again when something moved; of rows, all. `reads_left` ends the reading of a folder that
// never stands still.
bool Item_Cache::Read_Items(Items& items, const std::string& name, int folder) {
  Folder_Extent extent;
  std::int32_t checked = 0;
  const auto begin = [&] {
    extent = Extent_Of(items);
    Begin_Reading(items, folder, extent);
    checked = records_[folder].CachedCount;
  };
  begin();
  resets_ = records_[folder].Resets;
  std::int32_t end = extent.count;
  std::int64_t reads_left = std::int64_t{most_readings} * (end + batch);
  while (records_[folder].CachedCount < end) {
    if (--reads_left < 0) {
      Keep(folder, checked);
      throw Automation_Error(automation_error::busy, "The folder changes faster than it can be read.",
                             application_title);
    }
    const std::int32_t i = records_[folder].CachedCount + 1;
    if (i > records_[folder].Cache_Bound()) {
      records_[folder].ItemCache.resize(static_cast<std::size_t>(i));
      folder_tree_.Set_Node_Text(folder);
    }
    const bool by_table = By_Table(folder), there = !by_table || Has_Row(folder);
    if (!there && !Is_Touched(folder, i - 1)) {
      // The table has failed, or it ends before the folder does: not all that the folder holds is in it.
      const bool refused = Nothing_Moved(items, folder, checked, extent);
      Keep(folder, 0);
      records_[folder].Reading = refused ? std::make_shared<Table_Reading>() : nullptr;
      begin();
      end = std::min(end, extent.count);
      continue;
    }
    bool read = there;
    if (!by_table) {
      read = Cache_Current_Item(items, i, folder);
    } else if (!Is_Touched(folder, i - 1)) {
      Take_Row(i, folder);
    }
    // The report of a failure and every yield let handlers run, and they may have done something to the
    // folder.
    if (Is_Touched(folder, i - 1)) return Leave_Touched(folder, i - 1 - checked);
    records_[folder].CachedCount = i;
    if (read) events_.Do_Events();
    if (Is_Touched(folder, i)) return Leave_Touched(folder, i - checked);
    const bool stop = InterruptCaching || (read && Another_Folder_Is_Wanted());
    if (stop || !read || i == end || i % (by_table ? rows_between_looks : batch) == 0) {
      if (!Nothing_Moved(items, folder, checked, extent)) {
        Keep(folder, by_table ? 0 : checked);
        if (by_table) records_[folder].Reading.reset();
        if (stop) return false;
        begin();
        end = std::min(end, extent.count);
        continue;
      }
      checked = i;
      if (by_table) records_[folder].Reading->extent = extent;
    }
    if (stop) return false;
    if (i % batch == 0) {
      Add_100_New_Rows(folder);
      Display_Cache_Status(name, i);
      if (InterruptCaching || Is_Touched(folder, i)) return false;
    }
  }
  return true;
}

bool Item_Cache::By_Table(int folder) const {
  const std::shared_ptr<Table_Reading>& reading = records_[folder].Reading;
  return reading != nullptr && reading->table != nullptr;
}

// Goes on with the table where reading rested, or opens it; where the store refuses it, with the items.
void Item_Cache::Begin_Reading(Items& items, int folder, const Folder_Extent& extent) {
  if (By_Table(folder) && Goes_On(items, folder, extent)) return;
  if (By_Table(folder) || records_[folder].Reading == nullptr) Open_Table(folder);
  if (!By_Table(folder)) return Keep_What_Has_Its_Place(items, folder, extent.count);
  Keep(folder, 0);
  records_[folder].Reading->extent = extent;
}

bool Item_Cache::Goes_On(Items& items, int folder, const Folder_Extent& extent) {
  Folder_Extent& known = records_[folder].Reading->extent;
  const bool same = known == extent || (known.count > 0 && known.count < extent.count &&
                                        Id_At(items, known.count) == known.last_id);
  if (same) known = extent;
  return same;
}

void Item_Cache::Open_Table(int folder) {
  const auto reading = std::make_shared<Table_Reading>();
  const MAPIFolder_Ptr object = records_[folder].Folder;
  try {
    reading->table = object->GetTable();
  } catch (const Automation_Error& error) {
    if (error.Number() == automation_error::unavailable) throw;
  }
  records_[folder].Reading = reading;
}

// Sees to it that the next row is there. False where the table has none, or fails.
bool Item_Cache::Has_Row(int folder) {
  const std::shared_ptr<Table_Reading> reading = records_[folder].Reading;
  if (reading->next < reading->rows.size()) return true;
  reading->rows.clear();
  reading->next = 0;
  try {
    // A file is read the faster the more it is asked for at once; another program should not be held up long.
    reading->rows = reading->table->GetArray(session_.Asking_Costs_Calls() ? batch : rows_between_looks);
  } catch (const Automation_Error& error) {
    if (error.Number() == automation_error::unavailable) throw;
  }
  return !reading->rows.empty();
}

void Item_Cache::Take_Row(std::int32_t item, int folder) {
  Table_Reading& reading = *records_[folder].Reading;
  Table_Row& row = reading.rows[reading.next++];
  ItemData& data = records_[folder].Cached(item);
  const bool mail = row.Class == item_class::mail;
  data.ItemClass = row.Class;
  data.ItemDate = Get_Row_Date(row);
  data.Unread = row.UnRead;
  data.Flagged = mail && row.FlagStatus == flag_status::marked;
  data.Size = row.Size;
  data.HasAttachments = row.HasAttachments;
  if (!mail) row.SenderOrText.resize(First_Characters(row.SenderOrText, text_characters).size());
  data.SenderOrText = std::move(row.SenderOrText);
  data.Subject = std::move(row.Subject);
  data.EntryID = std::move(row.EntryID);
}

// A handler has changed what is known of the folder.
bool Item_Cache::Is_Touched(int folder, std::int32_t item) {
  const FolderData& record = records_[folder];
  return record.Folder == nullptr || record.Resets != resets_ || record.CachedCount != item;
}

// Whatever the handler did, items that have not been looked at again can only be the last that are left.
bool Item_Cache::Leave_Touched(int folder, std::int32_t unchecked) {
  if (By_Table(folder)) records_[folder].Reading.reset();
  if (records_[folder].Folder != nullptr) Keep(folder, std::max(0, records_[folder].CachedCount - unchecked));
  return false;
}

bool Item_Cache::Another_Folder_Is_Wanted() {
  const int selected = tree_.Selected_Item();
  if (selected == LastSelectedNode) return false;
  LastSelectedNode = selected;
  return selected != 0 && !records_[selected].Loaded;
}

// Empty for an item that does not say it.
std::string Item_Cache::Id_At(Items& items, std::int32_t item) {
  std::string id;
  errors_.Try([&] { id = items.Item(item)->EntryID(); });
  return id;
}

Folder_Extent Item_Cache::Extent_Of(Items& items) {
  const std::int32_t count = items.Count();
  return {count, count > 0 ? Id_At(items, count) : std::string()};
}

// Whether what was read behind `checked` stands where it was read, and each item once. Whatever comes or goes
// in front of the last item read or of the folder's last item moves one of these two, unless as many come as
// go; then what was read twice tells it. Items added behind all others move nothing. The place of a row is no
// place in the folder.
bool Item_Cache::Nothing_Moved(Items& items, int folder, std::int32_t checked, Folder_Extent& extent) {
  const bool by_table = By_Table(folder);
  std::vector<std::size_t> ids;  // that two should look alike costs no more than reading once again
  std::int32_t last = 0;
  for (std::int32_t item = std::max(1, checked - batch); item <= records_[folder].CachedCount; ++item) {
    const std::string& id = records_[folder].Cached(item).EntryID;
    if (id.empty()) continue;
    ids.push_back(std::hash<std::string>()(id));
    last = item;
  }
  std::sort(ids.begin(), ids.end());
  if (std::adjacent_find(ids.begin(), ids.end()) != ids.end()) return false;
  if (last > 0 && !by_table && Id_At(items, last) != records_[folder].Cached(last).EntryID) return false;
  bool same = false;
  errors_.Try([&] {
    const std::int32_t count = items.Count();
    if (count < extent.count) return;
    const std::string last_id = last == extent.count && !by_table ? records_[folder].Cached(last).EntryID
                                                                  : Id_At(items, extent.count);
    same = last_id == extent.last_id;
    if (same && count > extent.count) extent = Extent_Of(items);
  });
  // A row too many stands for an item that came while another one went.
  return same && !(by_table && records_[folder].CachedCount == extent.count && Has_Row(folder));
}

// Whether a cached item still stands where it was read; 0 stands for the folder's beginning.
bool Item_Cache::Has_Its_Place(Items& items, int folder, std::int32_t item) {
  if (item == 0) return true;
  const std::string& known = records_[folder].Cached(item).EntryID;
  return !known.empty() && Id_At(items, item) == known;
}

// Everything in front of what came or went has kept its place; the rest is to be read again.
void Item_Cache::Keep_What_Has_Its_Place(Items& items, int folder, std::int32_t count) {
  const std::int32_t cached = records_[folder].CachedCount;
  if (cached <= count && Has_Its_Place(items, folder, cached)) return;
  std::int32_t kept = 0, moved = std::min(cached, count + 1);
  while (moved - kept > 1) {
    const std::int32_t middle = kept + (moved - kept) / 2;
    (Has_Its_Place(items, folder, middle) ? kept : moved) = middle;
  }
  Keep(folder, kept);
}

// Forgets what was read behind an item.
void Item_Cache::Keep(int folder, std::int32_t kept) {
  if (records_[folder].RowCount > kept) view_.Remove_Folder_Rows(folder);
  FolderData& record = records_[folder];
  record.CachedCount = kept;
  if (record.RowCount > kept) record.RowCount = 0;
  record.Judged = {};
}

void Item_Cache::Finish_Folder(int folder) {
  FolderData& record = records_[folder];
  record.ItemCache.resize(static_cast<std::size_t>(record.CachedCount));
  record.Loaded = true;
  record.Reading.reset();
  tree_.Set_Fore_Colour(folder, loaded_colour);
  if (record.CachedCount == 0) return;
  const No_Redraw no_redraw(window_.grdItems);
  Add_100_New_Rows(folder);
  // The rows came in the order of the folder; now that all are there they stand where they belong.
  if (view_.In_View(folder)) view_.Set_Grid_Order();
  view_.Follow_Choice();
}

// In this order, so that a record which could not be read to its end holds what came before.
void Item_Cache::Read(Item& object, ItemData& data) {
  data.ItemClass = object.Class();
  data.Subject = object.Subject();
  data.ItemDate = Get_Item_Date(object, data.ItemClass);
  data.Unread = Check_Unread(object, errors_);
  data.Flagged = Check_Flagged(object, data.ItemClass, errors_);
  data.EntryID = object.EntryID();
  data.Size = object.Size();
  if (data.ItemClass != item_class::mail) {
    data.SenderOrText = object.Body(text_characters);
  } else if (Companion() != nullptr && !errors_.Try([&] {
               const std::shared_ptr<Mapi_Object> mapi_object = object.MAPIOBJECT();
               data.SenderOrText = mapi_utils_->HrGetOneProp(*mapi_object, sender_name_tag);
             })) {
    Say_That_Senders_Are_Missing();
  }
}

bool Item_Cache::Cache_Current_Item(Items& items, std::int32_t item, int folder) {
  return errors_.Run("Cache_Current_Item", [&] {
    bool there = true;
    const bool read = errors_.Report_First(item_failure_reported_, [&] {
      Item_Ptr object;
      try {
        object = items.Item(item);
      } catch (const Automation_Error&) {
        // What another program has taken away meanwhile has not failed.
        if (item <= items.Count()) throw;
        there = false;
        return;
      }
      // Filled apart: reading may show a box, and what runs meanwhile may reset the folder's records.
      ItemData data;
      const std::uint32_t resets = records_[folder].Resets;
      const auto keep = [&] {
        FolderData& record = records_[folder];
        if (record.Resets == resets && item <= record.Cache_Bound()) record.Cached(item) = data;
      };
      try {
        Read(*object, data);
      } catch (...) {
        keep();
        throw;
      }
      keep();
    });
    return read && there;
  });
}

}  // namespace tidyfold
