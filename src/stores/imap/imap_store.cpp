#include "stores/imap/imap_store.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "base/local_time.h"
#include "base/text.h"
#include "controls/interaction.h"
#include "errors/automation_error.h"
#include "mail/mime_message.h"
#include "stores/imap/message_id.h"

namespace tidyfold::imap {

namespace {

using automation_error::not_found;

// Changes wait for others until there are enough for a batch, but no longer than this, or than a batch takes.
constexpr auto longest_wait = std::chrono::milliseconds(300);

class Imap_Store : public Mail_Store, public std::enable_shared_from_this<Imap_Store> {
 public:
  Imap_Store(Store_Address address, Store_Mode mode, std::unique_ptr<Account> account)
      : address_(std::move(address)), mode_(mode), account_(std::move(account)) {
    store_id_ = "mail:" + address_.user + "@" + address_.host + ":" + std::to_string(address_.port);
  }

  const Store_Address& Address() const override { return address_; }
  bool Is_At(const Store_Address& address) const override {
    return address.kind == address_.kind && address.user == address_.user && address.host == address_.host &&
           address.port == address_.port;
  }
  Store_Mode Mode() const override { return mode_; }
  std::string StoreID() const override { return store_id_; }
  void Set_StoreID(std::string store_id) override { store_id_ = std::move(store_id); }
  MAPIFolder_Ptr Top_Folder() override;
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override;
  Item_Ptr GetItemFromID(const std::string& entry_id) override;
  New_Item Read_Whole_Item(const std::string& entry_id) override;
  void Set_Display(Display_Callback display) override { display_ = std::move(display); }
  void Set_Watcher(std::weak_ptr<Group_Watcher> watcher) override { watcher_ = std::move(watcher); }
  void Commit_Pending() override;
  bool Commit_Due() override;
  void Ask_When_Busy(std::function<bool(const std::string& words)> go_on) override {
    account_->Ask_When_Busy(std::move(go_on));
  }

  Account& Messages() { return *account_; }
  void Demand_Writable() const {
    if (mode_ == Store_Mode::Read_Only)
      Fail(automation_error::no_access, "The mail account is open for reading only.");
  }
  // Changes are named by their place in the group under way.
  struct Pending {
    Change change;
    std::string entry_id;
  };
  // What is on its way into a mailbox gets there.
  void Let_Arrive(std::size_t mailbox) {
    if (targets_.contains(mailbox)) Commit_Pending();
  }
  std::shared_ptr<Pending> Change_Message(std::size_t mailbox, std::uint32_t validity, Uid uid,
                                          std::size_t target);
  void Display(const std::string& entry_id, const std::string& folder);
  std::string Name() const { return address_.user + "@" + address_.host; }

 private:
  Store_Address address_;
  Store_Mode mode_;
  std::string store_id_;
  std::unique_ptr<Account> account_;
  Display_Callback display_;
  std::weak_ptr<Group_Watcher> watcher_;
  std::vector<std::shared_ptr<Pending>> pending_;
  std::set<std::size_t> targets_;
  std::chrono::steady_clock::time_point pending_since_;
};

using Store_Ptr_ = std::shared_ptr<Imap_Store>;

class Imap_Item : public Item, public Mapi_Object, public std::enable_shared_from_this<Imap_Item> {
 public:
  Imap_Item(Store_Ptr_ store, std::size_t mailbox, std::uint32_t validity, Uid uid)
      : store_(std::move(store)), mailbox_(mailbox), validity_(validity), uid_(uid) {}
  // One that is being moved there.
  Imap_Item(Store_Ptr_ store, std::size_t mailbox, std::shared_ptr<Imap_Store::Pending> moved,
            std::optional<Message_Data> row)
      : store_(std::move(store)), mailbox_(mailbox), moved_(std::move(moved)), row_(std::move(row)) {}

  std::int32_t Class() override { return Row().item_class; }
  std::string Subject() override { return Row().subject; }
  // Until it has been moved, it goes by the identity that it had.
  std::string EntryID() override {
    if (moved_ != nullptr && Is_On_Its_Way()) return moved_->entry_id;
    Arrive();
    Demand_There();
    return Text_Of({validity_, uid_, store_->Messages().Describe(mailbox_).wire_name});
  }
  std::string Body(std::size_t characters) override {
    std::string body = Whole().body;
    body.resize(First_Characters(body, characters).size());
    return body;
  }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override {
    Row();
    return shared_from_this();
  }
  std::string String_Property(std::uint32_t property_tag) override {
    const Message_Data& row = Row();
    return property_tag == sender_name_tag ? row.sender : std::string();
  }
  Date ReceivedTime() override {
    const Message_Data& row = Row();
    return row.received ? Local_Time(*row.received).value_or(no_date) : no_date;
  }
  Date LastModificationTime() override { return ReceivedTime(); }
  Date DateCompleted() override { return No_Date(); }
  Date DueDate() override { return No_Date(); }
  Date End() override { return No_Date(); }
  bool UnRead() override { return (Flags() & message_flag::seen) == 0; }
  std::int32_t FlagStatus() override {
    return (Flags() & message_flag::flagged) != 0 ? flag_status::marked : flag_status::none;
  }
  std::int64_t Size() override { return Row().size; }
  MAPIFolder_Ptr Parent() override;
  void Delete() override;
  Item_Ptr Move(MAPIFolder& folder) override;
  void Display() override {
    Arrive();
    store_->Display(EntryID(), store_->Messages().Describe(mailbox_).name);
  }
  New_Item Whole();

 private:
  Date No_Date() {
    Row();
    return no_date;
  }
  std::uint8_t Flags() {
    Row();
    return moved_ != nullptr ? moved_->change.flags : store_->Messages().Flags(mailbox_, uid_);
  }
  bool Is_On_Its_Way() const { return !moved_->change.is_done && moved_->change.reason.empty(); }
  // Whoever asks for more than the row of a message that is being moved waits until it has been.
  void Arrive() {
    if (moved_ == nullptr) return;
    if (Is_On_Its_Way()) store_->Commit_Pending();
    if (!moved_->change.is_done) Fail(automation_error::call_failed, moved_->change.reason);
    if (moved_->change.new_uid == 0) Fail(not_found, "The mail server did not say what became of the item.");
    uid_ = moved_->change.new_uid;
    validity_ = moved_->change.new_validity;
    moved_.reset();
    store_->Messages().Look(mailbox_);
  }
  void Demand_There() {
    if (is_gone_ || !store_->Messages().Has_Message(mailbox_, validity_, uid_)) Fail_Item_Gone();
  }
  const Message_Data& Row() {
    if (is_gone_) Fail_Item_Gone();
    if (moved_ == nullptr) Demand_There();
    if (!row_) {
      Arrive();
      row_ = store_->Messages().Row(mailbox_, uid_);
    }
    return *row_;
  }

  Store_Ptr_ store_;
  std::size_t mailbox_;
  std::uint32_t validity_ = 0;
  Uid uid_ = 0;
  std::shared_ptr<Imap_Store::Pending> moved_;
  std::optional<Message_Data> row_;
  bool is_gone_ = false;
};

// What stands in a mailbox, without what is about to leave it.
class Imap_Items : public Items {
 public:
  Imap_Items(Store_Ptr_ store, std::size_t mailbox) : store_(std::move(store)), mailbox_(mailbox) {}
  std::int32_t Count() override {
    store_->Let_Arrive(mailbox_);
    return static_cast<std::int32_t>(store_->Messages().Messages(mailbox_));
  }
  Item_Ptr Item(std::int32_t index) override {
    const auto [validity, uid] = At(index);
    last_ = {index, validity, uid};
    return std::make_shared<Imap_Item>(store_, mailbox_, validity, uid);
  }
  // Whoever has just looked at the item in this place means that one, whatever has come to stand there since.
  void Remove(std::int32_t index) override {
    auto [place, validity, uid] = last_;
    if (place != index || !store_->Messages().Has_Message(mailbox_, validity, uid))
      std::tie(validity, uid) = At(index);
    store_->Change_Message(mailbox_, validity, uid, 0);
  }

 private:
  std::pair<std::uint32_t, Uid> At(std::int32_t index) {
    store_->Let_Arrive(mailbox_);
    Account& account = store_->Messages();
    account.Look(mailbox_);
    const auto found = account.Message_At(mailbox_, index);
    if (!found)
      Fail(automation_error::bad_index, "There is no item " + std::to_string(index) + " in the folder.");
    return *found;
  }
  Store_Ptr_ store_;
  std::size_t mailbox_;
  std::tuple<std::int32_t, std::uint32_t, Uid> last_{0, 0, 0};
};

// Goes by UID, which only grows.
class Imap_Table : public Table {
 public:
  Imap_Table(Store_Ptr_ store, std::size_t mailbox)
      : store_(std::move(store)),
        mailbox_(mailbox),
        validity_(store_->Messages().Describe(mailbox).uid_validity) {}
  std::vector<Table_Row> GetArray(std::int32_t most) override {
    store_->Commit_Pending();
    Account& account = store_->Messages();
    account.Look(mailbox_);
    const Mailbox mailbox = account.Describe(mailbox_);
    if (mailbox.is_gone || (mailbox.uid_validity != validity_ && uid_ > 0))
      Fail(not_found, "The mail server has numbered the folder anew. Refresh it.");
    validity_ = mailbox.uid_validity;
    std::vector<Table_Row> rows;
    for (Message_Data& data :
         account.Rows_Behind(mailbox_, uid_, static_cast<std::size_t>(std::max(most, 0)))) {
      uid_ = data.uid;
      Table_Row& row = rows.emplace_back();
      row.EntryID = Text_Of({validity_, data.uid, mailbox.wire_name});
      row.Class = data.item_class;
      row.Subject = std::move(data.subject);
      row.SenderOrText = std::move(data.sender);
      if (data.received) row.ReceivedTime = Local_Time(*data.received).value_or(no_date);
      row.LastModificationTime = row.ReceivedTime;
      const std::uint8_t flags = data.flags.value_or(0);
      row.UnRead = (flags & message_flag::seen) == 0;
      if ((flags & message_flag::flagged) != 0) row.FlagStatus = flag_status::marked;
      row.Size = data.size;
      row.HasAttachments = data.has_attachments;
    }
    return rows;
  }

 private:
  Store_Ptr_ store_;
  std::size_t mailbox_;
  std::uint32_t validity_;
  Uid uid_ = 0;
};

class Imap_Folders : public Folders {
 public:
  Imap_Folders(Store_Ptr_ store, std::size_t mailbox) : store_(std::move(store)), mailbox_(mailbox) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(Children().size()); }
  MAPIFolder_Ptr Item(std::int32_t index) override;
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override;
  void Remove(std::int32_t index) override {
    const std::size_t child = Child(index);
    store_->Demand_Writable();
    store_->Commit_Pending();
    store_->Messages().Remove_Mailbox(child);
  }

 private:
  std::vector<std::size_t> Children() {
    store_->Messages().Look_At_Mailboxes();
    const Mailbox mailbox = store_->Messages().Describe(mailbox_);
    if (mailbox.is_gone) Fail_Folder_Gone();
    return mailbox.children;
  }
  std::size_t Child(std::int32_t index) {
    const auto children = Children();
    if (index < 1 || static_cast<std::size_t>(index) > children.size())
      Fail(automation_error::bad_index, "There is no folder " + std::to_string(index) + " in the folder.");
    return children[static_cast<std::size_t>(index - 1)];
  }
  Store_Ptr_ store_;
  std::size_t mailbox_;
};

class Imap_Store_Object : public tidyfold::Store {
 public:
  explicit Imap_Store_Object(Store_Ptr_ store) : store_(std::move(store)) {}
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    return store_->GetDefaultFolder(folder_type);
  }

 private:
  Store_Ptr_ store_;
};

class Imap_Folder : public MAPIFolder {
 public:
  Imap_Folder(Store_Ptr_ store, std::size_t mailbox) : store_(std::move(store)), mailbox_(mailbox) {}
  MAPIFolder_Ptr Parent() override {
    const Mailbox mailbox = Describe();
    return mailbox_ == 0 ? nullptr : std::make_shared<Imap_Folder>(store_, mailbox.parent);
  }
  std::int32_t DefaultItemType() override {
    Describe();
    return item_type::mail;
  }
  std::string EntryID() override { return Folder_Id(Describe()); }
  std::string StoreID() override {
    Describe();
    return store_->StoreID();
  }
  std::string Name() override { return mailbox_ == 0 ? store_->Name() : Describe().name; }
  Folders_Ptr Folders() override {
    Describe();
    return std::make_shared<Imap_Folders>(store_, mailbox_);
  }
  Items_Ptr Items() override {
    Describe();
    return std::make_shared<Imap_Items>(store_, mailbox_);
  }
  Table_Ptr GetTable() override {
    Describe();
    return std::make_shared<Imap_Table>(store_, mailbox_);
  }
  Store_Ptr Store() override {
    Describe();
    return std::make_shared<Imap_Store_Object>(store_);
  }

 private:
  Mailbox Describe() {
    Mailbox mailbox = store_->Messages().Describe(mailbox_);
    if (mailbox.is_gone) Fail_Folder_Gone();
    return mailbox;
  }
  Store_Ptr_ store_;
  std::size_t mailbox_;
};

MAPIFolder_Ptr Imap_Folders::Item(std::int32_t index) {
  return std::make_shared<Imap_Folder>(store_, Child(index));
}

MAPIFolder_Ptr Imap_Folders::Add(const std::string& name, std::int32_t default_item_type) {
  Children();
  store_->Demand_Writable();
  if (default_item_type != item_type::mail)
    Fail(automation_error::not_supported, "A mail account has folders for mail only.");
  return std::make_shared<Imap_Folder>(store_, store_->Messages().Add_Mailbox(mailbox_, name));
}

MAPIFolder_Ptr Imap_Item::Parent() {
  Row();
  return std::make_shared<Imap_Folder>(store_, mailbox_);
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
  return std::make_shared<Imap_Folder>(shared_from_this(), 0);
}

MAPIFolder_Ptr Imap_Store::GetDefaultFolder(std::int32_t folder_type) {
  const std::size_t mailbox = account_->Find_Role(folder_type);
  if (mailbox == 0) Fail(not_found, "The mail account has no folder of this kind.");
  return std::make_shared<Imap_Folder>(shared_from_this(), mailbox);
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

}  // namespace

std::shared_ptr<Mail_Store> Store_On(const Store_Address& address, Store_Mode mode,
                                     std::unique_ptr<Account> account) {
  return std::make_shared<Imap_Store>(address, mode, std::move(account));
}

}  // namespace tidyfold::imap
