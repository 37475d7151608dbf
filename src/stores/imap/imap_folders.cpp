// Folders of a mail account, and what lies in them.
#include <algorithm>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/local_time.h"
#include "errors/automation_error.h"
#include "stores/imap/imap_objects.h"
#include "stores/imap/message_id.h"

namespace tidyfold::imap {

namespace {

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
      Fail(automation_error::not_found, "The mail server has numbered the folder anew. Refresh it.");
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

}  // namespace

MAPIFolder_Ptr Folder_Object(std::shared_ptr<Imap_Store> store, std::size_t mailbox) {
  return std::make_shared<Imap_Folder>(std::move(store), mailbox);
}

}  // namespace tidyfold::imap
