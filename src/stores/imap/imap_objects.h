// The objects of a mail account, for the files that implement them.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/local_time.h"
#include "base/text.h"
#include "errors/automation_error.h"
#include "outlook/mail_store.h"
#include "stores/imap/account.h"
#include "stores/imap/message_id.h"

namespace tidyfold::imap {

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
    if (moved_->change.new_uid == 0)
      Fail(automation_error::not_found, "The mail server did not say what became of the item.");
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

MAPIFolder_Ptr Folder_Object(std::shared_ptr<Imap_Store> store, std::size_t mailbox);

}  // namespace tidyfold::imap
