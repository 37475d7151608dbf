#include "stores/imap/imap_store.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"
#include "mail/mime_message.h"
#include "stores/imap/imap_objects.h"
#include "stores/imap/message_id.h"

namespace tidyfold::imap {

namespace {

using automation_error::not_found;

// Changes wait for others until there are enough for a batch, but no longer than this, or than a batch takes.
constexpr auto longest_wait = std::chrono::milliseconds(300);

}  // namespace

MAPIFolder_Ptr Imap_Item::Parent() {
  Row();
  return Folder_Object(store_, mailbox_);
}

// What is to be deleted out of the wastebasket while it is still on its way there goes from where it lies.
void Imap_Item::Delete() {
  if (moved_ != nullptr && Is_On_Its_Way()) {
    moved_->change.target = 0;
    is_gone_ = true;
    return;
  }
  Arrive();
  Demand_There();
  const std::size_t trash = store_->Messages().Find_Role(default_folder_deleted_items);
  if (trash == 0)
    Fail(automation_error::not_supported, "The mail account has no folder for what is deleted (Trash).");
  if (mailbox_ == trash) {
    store_->Change_Message(mailbox_, validity_, uid_, 0);
    is_gone_ = true;
    return;
  }
  if (!row_) Row();
  moved_ = store_->Change_Message(mailbox_, validity_, uid_, trash);
  mailbox_ = trash;
}

Item_Ptr Imap_Item::Move(MAPIFolder& folder) {
  Arrive();
  Demand_There();
  if (folder.StoreID() != store_->StoreID())
    Fail(automation_error::not_supported, "An item can only be moved within its own mail account.");
  const auto id = Read_Folder_Id(folder.EntryID());
  const auto target = id ? store_->Messages().Find(id->validity, id->mailbox) : std::nullopt;
  if (!target) Fail_Folder_Gone();
  auto moved = store_->Change_Message(mailbox_, validity_, uid_, *target);
  is_gone_ = true;
  return std::make_shared<Imap_Item>(store_, *target, std::move(moved), std::move(row_));
}

New_Item Imap_Item::Whole() {
  Arrive();
  const Message_Data row = Row();
  New_Item item;
  const std::string raw = store_->Messages().Body(mailbox_, uid_);
  try {
    item = Read_Mime_Message(raw);
  } catch (const Message_Error&) {
    item.body = Valid_Utf8(raw);
    item.raw_message = raw;
  }
  // As it is listed.
  item.item_class = row.item_class;
  item.subject = row.subject;
  item.sender = row.sender;
  item.received = ReceivedTime();
  item.unread = UnRead();
  item.flagged = FlagStatus() == flag_status::marked;
  item.answered = (Flags() & message_flag::answered) != 0;
  item.size = row.size;
  return item;
}

MAPIFolder_Ptr Imap_Store::Top_Folder() {
  return Folder_Object(shared_from_this(), 0);
}

MAPIFolder_Ptr Imap_Store::GetDefaultFolder(std::int32_t folder_type) {
  const std::size_t mailbox = account_->Find_Role(folder_type);
  if (mailbox == 0) Fail(not_found, "The mail account has no folder of this kind.");
  return Folder_Object(shared_from_this(), mailbox);
}

Item_Ptr Imap_Store::GetItemFromID(const std::string& entry_id) {
  const auto id = Read_Message_Id(entry_id);
  const std::size_t mailbox = id ? account_->Find(id->mailbox) : 0;
  if (mailbox == 0) Fail_Item_Gone();
  account_->Look(mailbox);
  if (!account_->Has_Message(mailbox, id->validity, id->uid)) Fail_Item_Gone();
  return std::make_shared<Imap_Item>(shared_from_this(), mailbox, id->validity, id->uid);
}

New_Item Imap_Store::Read_Whole_Item(const std::string& entry_id) {
  const auto item = std::static_pointer_cast<Imap_Item>(GetItemFromID(entry_id));
  return item->Whole();
}

void Imap_Store::Display(const std::string& entry_id, const std::string& folder) {
  if (!display_) Fail(automation_error::not_supported, "There is no window here that could show an item.");
  Displayed_Item shown;
  static_cast<New_Item&>(shown) = Read_Whole_Item(entry_id);
  shown.entry_id = entry_id;
  shown.store_id = store_id_;
  shown.folder_name = folder;
  display_(shown);
}

std::shared_ptr<Imap_Store::Pending> Imap_Store::Change_Message(std::size_t mailbox, std::uint32_t validity,
                                                                Uid uid, std::size_t target) {
  Demand_Writable();
  auto pending = std::make_shared<Pending>();
  pending->change = account_->Plan_Change(mailbox, validity, uid, target);
  pending->entry_id = Text_Of({validity, uid, account_->Describe(mailbox).wire_name});
  if (pending_.empty()) pending_since_ = std::chrono::steady_clock::now();
  pending_.push_back(pending);
  if (target != 0) targets_.insert(target);
  return pending;
}

bool Imap_Store::Commit_Due() {
  const bool wait = pending_.size() < account_->Batch_Size() &&
                    std::chrono::steady_clock::now() - pending_since_ <
                        std::max<Portion_Size::Duration>(longest_wait, account_->Last_Batch_Took());
  if (!wait) Commit_Pending();
  return pending_.empty();
}

void Imap_Store::Commit_Pending() {
  if (pending_.empty()) return;
  const auto watcher = watcher_.lock();
  if (watcher != nullptr) watcher->Group_Ending();
  const auto group = std::exchange(pending_, {});
  targets_.clear();
  std::vector<Change> changes;
  changes.reserve(group.size());
  for (const auto& pending : group) changes.push_back(pending->change);
  std::exception_ptr failure;
  try {
    account_->Carry_Out(changes);
  } catch (...) {
    failure = std::current_exception();
  }
  for (std::size_t at = 0; at < group.size(); ++at) {
    Change& change = group[at]->change = changes[at];
    if (!change.is_done && change.reason.empty())
      change.reason = "It is not known whether the mail server did it.";
    if (watcher == nullptr) continue;
    if (!change.is_done) {
      watcher->Not_Kept(store_id_, group[at]->entry_id, change.reason);
    } else if (change.target != 0 && change.new_uid != 0) {
      const Mailbox target = account_->Describe(change.target);
      watcher->Renamed(store_id_, group[at]->entry_id,
                       Text_Of({change.new_validity, change.new_uid, target.wire_name}));
    }
  }
  if (watcher != nullptr) watcher->Group_Ended(store_id_, true);
  if (failure != nullptr) std::rethrow_exception(failure);
}

std::shared_ptr<Mail_Store> Store_On(const Store_Address& address, Store_Mode mode,
                                     std::unique_ptr<Account> account) {
  return std::make_shared<Imap_Store>(address, mode, std::move(account));
}

}  // namespace tidyfold::imap
