#include "runs/putting_back.h"

#include <cmath>
#include <utility>

#include "errors/automation_error.h"
#include "outlook/folder_path.h"

namespace tidyfold {

namespace {

// Why an item is not the one that was deleted; empty where it is. Some stores count the deletion itself as a
// modification, and some items go by the day of that.
std::string Difference(Item& item, const Logged_Item& was, const Days& days,
                       const Taking_Back::Item_Day& item_day) {
  if (item.Class() != was.item_class) return "its type is another";
  if (item.Subject() != was.subject) return "its subject is another";
  const Date day = item_day(item, was.item_class);
  if (day == std::floor(was.date)) return {};
  const Date modified = std::floor(item.LastModificationTime());
  if (day == modified && modified >= days.first && modified <= days.last) return {};
  return "its date is another";
}

}  // namespace

Putting_Back::Putting_Back(NameSpace& name_space, Change_Groups* groups, Run_Log& log,
                           const Taking_Back::Item_Day& item_day,
                           std::map<std::string, Folder_Finder::Item_Types> types, Events& events,
                           Error_Handler& errors, Taking_Back_Report& report)
    : name_space_(name_space),
      log_(log),
      item_day_(item_day),
      types_(std::move(types)),
      events_(events),
      errors_(errors),
      report_(report),
      ledger_(groups, log) {}

void Putting_Back::Begin(const Run_Header& header, Date now) {
  report_.run = log_.Begin(header, now);
  report_.undo_of = header.undo_of;
}

Folder_Finder* Putting_Back::Finder(const std::string& store_id) {
  const auto known = finders_.find(store_id);
  if (known != finders_.end()) return known->second.get();
  std::unique_ptr<Folder_Finder>& finder = finders_[store_id];
  const Folders_Ptr tops = name_space_.Folders();
  const std::int32_t count = tops->Count();
  for (std::int32_t i = 1; i <= count && finder == nullptr; ++i) {
    MAPIFolder_Ptr top = tops->Item(i);
    if (top->StoreID() == store_id)
      finder = std::make_unique<Folder_Finder>(name_space_, std::move(top), types_[store_id]);
  }
  return finder.get();
}

void Putting_Back::Leave(Logged_Item item) {
  if (item.number == 0) {
    item.number = log_.Note(item);
  } else {
    log_.Set_Result(item.number, item.result, {}, item.reason);
  }
  report_.not_put_back.push_back(std::move(item));
}

bool Putting_Back::Put_Back(const Logged_Item& was, const Days& days) {
  Logged_Item entry = was;
  entry.number = 0;
  entry.entry_id = was.Id_After();
  entry.new_entry_id.clear();
  entry.reason.clear();
  entry.action = Item_Action::Put_Back;
  entry.result = Item_Result::Begun;
  std::string reason;
  Item_Result result = Item_Result::Failed;
  const bool done = errors_.Try([&] {
    Folder_Finder* const finder = Finder(was.folder.store_id);
    if (finder == nullptr) {
      reason = "Its store is not open.";
      report_.store_failed = true;
      return;
    }
    const Item_Ptr item = name_space_.GetItemFromID(entry.entry_id, was.folder.store_id);
    const MAPIFolder_Ptr lies_in = item->Parent();
    const std::string lies_in_id = lies_in->EntryID();
    if (!finder->Is_Deleted_Items(lies_in_id)) {
      if (lies_in_id != was.folder.entry_id) reason = "It lies in \"" + Path_Of_Folder(*lies_in) + "\" now.";
      return;
    }
    const std::string difference = Difference(*item, was, days, item_day_);
    if (!difference.empty()) {
      reason = "It was changed since it was deleted: " + difference + ".";
      result = Item_Result::Changed;
      return;
    }
    Move(*item, *finder, entry);
  });
  if (!done) {
    reason = errors_.error.Description;
    report_.store_failed = report_.store_failed || errors_.error.Number != automation_error::not_found;
    // Of an item that was to go for good, a run that was killed does not say whether it went.
    if (errors_.error.Number == automation_error::not_found && was.action == Item_Action::Deleted) {
      ++report_.gone_for_good;
      reason.clear();
    }
    if (group_lost_) Break_Off(reason);
    errors_.error.Clear();
  }
  if (!reason.empty()) {
    entry.result = result;
    entry.reason = reason;
    Leave(std::move(entry));
  }
  return Go_On();
}

void Putting_Back::Move(Item& item, Folder_Finder& finder, Logged_Item& entry) {
  MAPIFolder_Ptr folder = finder.Find_Or_Make(entry.folder);
  entry.number = log_.Note(entry);
  ledger_.Before_Change(entry.folder.store_id);
  Item_Ptr moved;
  try {
    moved = item.Move(*folder);
  } catch (const Automation_Error& gone) {
    // The folder may have gone since it was looked up.
    if (gone.Number() != automation_error::not_found) throw;
    finder.Forget();
    folder = finder.Find_Or_Make(entry.folder);
    moved = item.Move(*folder);
  }
  // It has moved, whatever can be read of it now.
  Logged_Folder into = entry.folder;
  std::string new_id;
  errors_.Try([&] { new_id = moved->EntryID(); });
  errors_.Try([&] { into.entry_id = folder->EntryID(); });
  if (new_id == entry.entry_id) new_id.clear();
  ledger_.Pending(into.store_id, entry.entry_id, [this, entry, into, new_id](const Change_Outcome& outcome) {
    if (outcome.kept) {
      ++report_.put_back;
      log_.Set_Result(entry.number, Item_Result::Done, new_id.empty() ? outcome.new_entry_id : new_id);
      if (folders_.insert(into.store_id + "/" + into.entry_id).second) report_.folders.push_back(into);
    } else {
      group_lost_ = group_lost_ || outcome.Group_Lost();
      Logged_Item left = entry;
      left.result = Item_Result::Failed;
      left.reason = outcome.Why_Not_Kept();
      Leave(std::move(left));
    }
  });
}

// A store whose changes cannot be kept, and a log that cannot be written, fail for all that would follow.
bool Putting_Back::Go_On() {
  if (!errors_.Try([&] { events_.Do_Events(); })) Break_Off(errors_.error.Description);
  if (!ledger_.Log_Failure().empty()) Break_Off(ledger_.Log_Failure());
  return report_.failure.empty() && !errors_.Store_Gone();
}

void Putting_Back::Break_Off(const std::string& failure) {
  if (report_.failure.empty()) report_.failure = failure;
}

void Putting_Back::End(bool cancelled, Date now) {
  if (!errors_.Try([&] { ledger_.Settle(); })) Break_Off(errors_.error.Description);
  errors_.error.Clear();
  for (const auto& [store, finder] : finders_)
    report_.folders_made = report_.folders_made || (finder != nullptr && finder->Made() > 0);
  const auto broken_off = [&] { return !report_.failure.empty() || errors_.Store_Gone(); };
  try {
    log_.End({report_.put_back, !report_.Complete() || broken_off(), cancelled}, now);
  } catch (const Run_Log_Error& error) {
    Break_Off(error.what());
  }
  using Ending = Taking_Back_Report::Ending;
  report_.ending = broken_off() ? Ending::Broken_Off : cancelled ? Ending::Cancelled : Ending::Done;
}

}  // namespace tidyfold
