#include "stores/maildir/maildir_objects.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <optional>
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"

namespace tidyfold::maildir {

namespace {

using Store_Ref = std::shared_ptr<Maildir_Store>;

// What its file says is read once.
class Maildir_Item : public Item, public Mapi_Object, public std::enable_shared_from_this<Maildir_Item> {
 public:
  Maildir_Item(Store_Ref store, Mail& mail) : store_(std::move(store)), mail_(mail) {}

  std::int32_t Class() override { return Read().item_class; }
  std::string Subject() override { return Read().subject; }
  std::string EntryID() override { return store_->Entry_Id(There()); }
  std::string Body(std::size_t characters) override {
    std::string body = store_->Whole(There()).body;
    body.resize(First_Characters(body, characters).size());
    return body;
  }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override {
    There();
    return shared_from_this();
  }
  std::string String_Property(std::uint32_t property_tag) override {
    return property_tag == sender_name_tag ? Read().sender : (There(), std::string());
  }
  Date ReceivedTime() override { return Read().received; }
  Date LastModificationTime() override { return Read().received; }
  Date DateCompleted() override { return There(), no_date; }
  Date DueDate() override { return There(), no_date; }
  Date End() override { return There(), no_date; }
  bool UnRead() override { return !There().Has('S'); }
  std::int32_t FlagStatus() override { return There().Has('F') ? flag_status::marked : flag_status::none; }
  std::int64_t Size() override { return Read(), size_; }
  MAPIFolder_Ptr Parent() override { return Make_Folder(store_, *There().folder); }
  void Delete() override { store_->Delete(mail_); }
  Item_Ptr Move(MAPIFolder& folder) override {
    There();
    if (folder.StoreID() != store_->StoreID())
      Maildir_Store::Fail(automation_error::not_supported, "An item can only be moved within its own store.");
    store_->Move(mail_, folder.EntryID());
    return shared_from_this();
  }
  void Display() override { store_->Display(There()); }

 private:
  Mail& There() {
    if (mail_.gone || mail_.folder->gone)
      Maildir_Store::Fail(automation_error::not_found, "The item is no longer there.");
    return mail_;
  }
  const Mail_Summary& Read() {
    There();
    if (!summary_) summary_ = store_->Summary(mail_, size_);
    return *summary_;
  }

  Store_Ref store_;
  Mail& mail_;
  std::optional<Mail_Summary> summary_;
  std::int64_t size_ = 0;
};

// The base of folders and of the collections in them.
class Folder_View {
 protected:
  Folder_View(Store_Ref store, Folder& folder) : store_(std::move(store)), folder_(folder) {}
  Folder& There() const {
    if (folder_.gone) Maildir_Store::Fail(automation_error::not_found, "The folder is no longer there.");
    return folder_;
  }

  Store_Ref store_;
  Folder& folder_;
};

class Maildir_Items : public Items, Folder_View {
 public:
  Maildir_Items(Store_Ref store, Folder& folder) : Folder_View(std::move(store), folder) {}
  std::int32_t Count() override {
    store_->Look_At(folder_);
    return folder_.mail->Count();
  }
  Item_Ptr Item(std::int32_t index) override { return Make_Item(store_, At(index)); }
  void Remove(std::int32_t index) override { store_->Remove(At(index)); }

 private:
  Mail& At(std::int32_t index) {
    if (index < 1 || index > Count())
      Maildir_Store::Fail(automation_error::bad_index,
                          "There is no item " + std::to_string(index) + " in the folder.");
    return folder_.mail->At(index);
  }
};

class Maildir_Table : public Table, Folder_View {
 public:
  Maildir_Table(Store_Ref store, Folder& folder) : Folder_View(std::move(store), folder) {}
  std::vector<Table_Row> GetArray(std::int32_t most) override {
    store_->Look_At(folder_);
    const auto wanted = static_cast<std::size_t>(std::max(most, 0));
    std::vector<Table_Row> rows;
    rows.reserve(std::min(wanted, expected_.size() + batch_size));
    while (rows.size() < wanted) {
      while (expected_.size() < wanted - rows.size() + batch_size && Expect_More()) {
      }
      if (expected_.empty()) break;
      Expected next = std::move(expected_.front());
      expected_.pop_front();
      std::optional<Read_Header> read;
      if (next.batch != nullptr) read = next.batch->Take(next.place);
      // It may have gone since, or come back behind the others.
      Mail* const mail = folder_.mail->Slots()[next.slot];
      if (mail == nullptr) continue;
      if (mail->inode != next.inode) {
        next.header.reset();
        read.reset();
      }
      try {
        rows.push_back(store_->Row(*mail, std::move(next.header), std::move(read)));
      } catch (const Automation_Error& error) {
        if (error.Number() != automation_error::not_found) throw;  // gone since the look
      }
    }
    since_kept_ += rows.size();
    if (since_kept_ >= kept_at_once || rows.size() < wanted) {
      store_->Keep_Headers();
      since_kept_ = 0;
    }
    return rows;
  }

 private:
  static constexpr std::size_t batch_size = 256;
  static constexpr std::size_t kept_at_once = 4096;
  // Fewer are read faster than handed over.
  static constexpr std::size_t worth_a_batch = 8;

  // A row to come.
  struct Expected {
    std::uint32_t slot = 0;
    std::uint64_t inode = 0;
    std::optional<Cached_Header> header;  // kept from an earlier reading
    std::shared_ptr<Header_Batch> batch;  // else the file is read with this one
    std::size_t place = 0;                // in it
  };

  // False at the end of the folder.
  bool Expect_More() {
    std::vector<const Mail*> unknown;
    const std::size_t first = expected_.size();
    while (expected_.size() < first + batch_size) {
      const Mail* const mail = folder_.mail->From(slot_);
      if (mail == nullptr) break;
      slot_ = mail->slot + 1;
      Expected& next = expected_.emplace_back();
      next.slot = mail->slot;
      next.inode = mail->inode;
      next.header = store_->Kept_Header(*mail);
      if (!next.header) unknown.push_back(mail);
    }
    if (unknown.size() >= worth_a_batch) {
      const auto batch = std::make_shared<Header_Batch>(store_->Directory_Of(folder_), unknown);
      std::size_t place = 0;
      for (std::size_t at = first; at < expected_.size(); ++at)
        if (!expected_[at].header) {
          expected_[at].batch = batch;
          expected_[at].place = place++;
        }
      store_->Read_Soon(batch);
    }
    return expected_.size() > first;
  }

  std::deque<Expected> expected_;
  std::uint32_t slot_ = 0;  // the first one behind those expected
  std::size_t since_kept_ = 0;
};

class Maildir_Folders : public Folders, Folder_View {
 public:
  Maildir_Folders(Store_Ref store, Folder& folder) : Folder_View(std::move(store), folder) {}
  std::int32_t Count() override {
    There();
    store_->Look_At_Tree();
    return static_cast<std::int32_t>(There().children.size());
  }
  MAPIFolder_Ptr Item(std::int32_t index) override { return Make_Folder(store_, Child(index)); }
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override {
    return Make_Folder(store_, store_->Add_Folder(There(), name, default_item_type));
  }
  void Remove(std::int32_t index) override { store_->Remove_Folder(Child(index)); }

 private:
  Folder& Child(std::int32_t index) {
    if (index < 1 || index > Count())
      Maildir_Store::Fail(automation_error::bad_index,
                          "There is no folder " + std::to_string(index) + " in the folder.");
    return *folder_.children[static_cast<std::size_t>(index - 1)];
  }
};

class Store_Object : public Store {
 public:
  explicit Store_Object(Store_Ref store) : store_(std::move(store)) {}
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    return store_->GetDefaultFolder(folder_type);
  }

 private:
  Store_Ref store_;
};

class Maildir_Folder : public MAPIFolder, Folder_View {
 public:
  Maildir_Folder(Store_Ref store, Folder& folder) : Folder_View(std::move(store), folder) {}
  MAPIFolder_Ptr Parent() override {
    return There().parent == nullptr ? nullptr : Make_Folder(store_, *folder_.parent);
  }
  std::int32_t DefaultItemType() override { return There(), item_type::mail; }
  std::string EntryID() override { return There().entry_id; }
  std::string StoreID() override { return There(), store_->StoreID(); }
  std::string Name() override { return There().name; }
  Folders_Ptr Folders() override { return std::make_shared<Maildir_Folders>(store_, There()); }
  Items_Ptr Items() override { return std::make_shared<Maildir_Items>(store_, There()); }
  Table_Ptr GetTable() override { return std::make_shared<Maildir_Table>(store_, There()); }
  Store_Ptr Store() override { return There(), std::make_shared<Store_Object>(store_); }
};

}  // namespace

MAPIFolder_Ptr Make_Folder(std::shared_ptr<Maildir_Store> store, Folder& folder) {
  return std::make_shared<Maildir_Folder>(std::move(store), folder);
}

Item_Ptr Make_Item(std::shared_ptr<Maildir_Store> store, Mail& mail) {
  return std::make_shared<Maildir_Item>(std::move(store), mail);
}

}  // namespace tidyfold::maildir
