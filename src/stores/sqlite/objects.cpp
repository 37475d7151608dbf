#include "stores/sqlite/objects.h"

#include <limits>
#include <utility>
#include <vector>

#include "base/text.h"
#include "errors/automation_error.h"
#include "outlook/default_folders.h"
#include "stores/sqlite/entry_id.h"

namespace tidyfold::sqlite {

namespace {

[[noreturn]] void Fail(std::int32_t number, const std::string& text) {
  throw Automation_Error(number, text, error_source);
}

// Is its own Mapi_Object, which saves an allocation per property.
class Embedded_Item : public Item, public Mapi_Object, public std::enable_shared_from_this<Embedded_Item> {
 public:
  Embedded_Item(std::shared_ptr<Store> store, Found_Item found)
      : store_(std::move(store)),
        found_(std::move(found)),
        place_{found_.Row().folder, found_.Row().position},
        age_(store_->Age()) {}

  std::int32_t Class() override { return Alive().item_class; }
  std::string Subject() override { return std::string(found_.rows->Subject(Alive())); }
  std::string EntryID() override { return Item_Entry_Id(Alive().id); }
  std::string Body(std::size_t characters) override {
    const Item_Row& row = Alive();
    if (row.item_class == item_class::mail || characters > row_characters) {
      std::string body = store_->Body(row.id);
      body.resize(First_Characters(body, characters).size());
      return body;
    }
    const std::string_view start = found_.rows->Sender_Or_Text(row);
    return std::string(characters == row_characters ? start : First_Characters(start, characters));
  }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override {
    Alive();
    return shared_from_this();
  }
  std::string String_Property(std::uint32_t property_tag) override {
    const Item_Row& row = Alive();
    if (property_tag != sender_name_tag) return {};
    if (row.item_class == item_class::mail) return std::string(found_.rows->Sender_Or_Text(row));
    return store_->Sender(row.id);
  }
  Date ReceivedTime() override { return Alive().received; }
  Date LastModificationTime() override { return Alive().last_modified; }
  Date DateCompleted() override { return Alive().completed; }
  Date DueDate() override { return Alive().due; }
  Date End() override { return Alive().end; }
  bool UnRead() override { return Alive().unread; }
  std::int32_t FlagStatus() override { return Alive().flag; }
  std::int64_t Size() override { return Alive().size; }
  MAPIFolder_Ptr Parent() override {
    Alive();
    return Make_Folder(store_, place_.folder);
  }
  void Delete() override {
    const std::int64_t id = Alive().id;
    const Item_Place now = store_->Delete_Item(id, place_);
    // If the item is gone, its age stays behind the store's, and the next call looks it up in vain.
    if (now.folder == 0) return;
    place_ = now;
    age_ = store_->Age();
  }
  Item_Ptr Move(MAPIFolder& folder) override {
    const std::int64_t id = Alive().id;
    if (folder.StoreID() != store_->StoreID()) {
      Fail(automation_error::not_supported, "An item can only be moved within its own store.");
    }
    const auto target = Folder_Of_Entry_Id(folder.EntryID());
    if (!target) Fail(automation_error::not_found, "The folder is no longer there.");
    place_ = store_->Move_Item(id, place_, *target);
    age_ = store_->Age();
    return shared_from_this();
  }
  void Display() override {
    Alive();
    store_->Display(found_, place_.folder);
  }

 private:
  const Item_Row& Alive() {
    if (age_ != store_->Age()) {
      place_ = store_->Locate(found_.Row().id);
      age_ = store_->Age();
    }
    return found_.Row();
  }

  std::shared_ptr<Store> store_;
  Found_Item found_;
  Item_Place place_;
  std::uint64_t age_;
};

// The base of folders and of the collections in them.
class Folder_View {
 protected:
  Folder_View(std::shared_ptr<Store> store, std::int64_t id) : store_(std::move(store)), id_(id) {}
  const Folder_Record& Record() const { return store_->Folder(id_); }

  std::shared_ptr<Store> store_;
  std::int64_t id_;
};

class Embedded_Items : public Items, Folder_View {
 public:
  Embedded_Items(std::shared_ptr<Store> store, std::int64_t folder) : Folder_View(std::move(store), folder) {}
  std::int32_t Count() override { return Record().item_count; }
  Item_Ptr Item(std::int32_t index) override {
    return std::make_shared<Embedded_Item>(store_, store_->Item_At(id_, index));
  }
  void Remove(std::int32_t index) override {
    const Found_Item found = store_->Item_At(id_, index);
    store_->Remove_Item(found.Row().id, {id_, found.Row().position});
  }
};

// Goes by the items' positions, which only grow.
class Embedded_Table : public Table, Folder_View {
 public:
  Embedded_Table(std::shared_ptr<Store> store, std::int64_t folder) : Folder_View(std::move(store), folder) {}
  std::vector<Table_Row> GetArray(std::int32_t most) override {
    return store_->Rows_Behind(id_, position_, most);
  }

 private:
  std::int64_t position_ = std::numeric_limits<std::int64_t>::min();
};

class Embedded_Folders : public Folders, Folder_View {
 public:
  Embedded_Folders(std::shared_ptr<Store> store, std::int64_t folder)
      : Folder_View(std::move(store), folder) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(Record().children.size()); }
  MAPIFolder_Ptr Item(std::int32_t index) override { return Make_Folder(store_, Child(index)); }
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override {
    return Make_Folder(store_, store_->Add_Folder(id_, name, default_item_type));
  }
  void Remove(std::int32_t index) override { store_->Remove_Folder(Child(index)); }

 private:
  std::int64_t Child(std::int32_t index) const {
    const auto& children = Record().children;
    if (index < 1 || static_cast<std::size_t>(index) > children.size()) {
      Fail(automation_error::bad_index, "There is no folder " + std::to_string(index) + " in the folder.");
    }
    return children[static_cast<std::size_t>(index - 1)]->id;
  }
};

class Store_Object : public tidyfold::Store {
 public:
  explicit Store_Object(std::shared_ptr<sqlite::Store> store) : store_(std::move(store)) {}
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    return Find_Default_Folder(store_, folder_type);
  }

 private:
  std::shared_ptr<sqlite::Store> store_;
};

class Embedded_Folder : public MAPIFolder, Folder_View {
 public:
  Embedded_Folder(std::shared_ptr<sqlite::Store> store, std::int64_t id)
      : Folder_View(std::move(store), id) {}
  MAPIFolder_Ptr Parent() override {
    const Folder_Record* parent = Record().parent;
    return parent == nullptr ? nullptr : Make_Folder(store_, parent->id);
  }
  std::int32_t DefaultItemType() override { return Record().item_type; }
  std::string EntryID() override { return Folder_Entry_Id(Record().id); }
  std::string StoreID() override {
    Record();
    return store_->StoreID();
  }
  std::string Name() override { return Record().name; }
  Folders_Ptr Folders() override {
    Record();
    return std::make_shared<Embedded_Folders>(store_, id_);
  }
  Items_Ptr Items() override {
    Record();
    return std::make_shared<Embedded_Items>(store_, id_);
  }
  Table_Ptr GetTable() override {
    Record();
    return std::make_shared<Embedded_Table>(store_, id_);
  }
  Store_Ptr Store() override {
    Record();
    return std::make_shared<Store_Object>(store_);
  }
};

class Embedded_Writer : public Store_Writer {
 public:
  explicit Embedded_Writer(Store& store) : store_(store) {}
  MAPIFolder_Ptr Top_Folder() override { return Make_Folder(store_.shared_from_this(), store_.Top().id); }
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name,
                            std::int32_t default_item_type) override {
    return Make_Folder(store_.shared_from_this(),
                       store_.Add_Folder(Number_Of(parent), name, default_item_type));
  }
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override {
    return Item_Entry_Id(store_.Add_Item(Number_Of(folder), item));
  }
  std::int64_t Count_Of(std::int64_t identity) override { return store_.Count_Of(identity); }
  std::string Fill_Identities(const std::string& after, std::int32_t most,
                              const std::function<std::int64_t(const New_Item&)>& identity_of) override {
    const std::int64_t behind = after.empty() ? 0 : Item_Of_Entry_Id(after).value_or(0);
    const std::int64_t last = store_.Fill_Identities(behind, most, identity_of);
    return last == 0 ? std::string() : Item_Entry_Id(last);
  }
  void Begin() override { store_.Begin(); }
  void Commit() override { store_.Commit(); }
  void Roll_Back() override { store_.Roll_Back(); }

 private:
  // Accepts any object with the identity of one of this store's folders.
  std::int64_t Number_Of(MAPIFolder& folder) const {
    const auto id = Folder_Of_Entry_Id(folder.EntryID());
    if (!id || folder.StoreID() != store_.StoreID()) {
      Fail(automation_error::not_found, "The folder does not belong to the store.");
    }
    return *id;
  }

  Store& store_;
};

}  // namespace

MAPIFolder_Ptr Make_Folder(std::shared_ptr<Store> store, std::int64_t id) {
  return std::make_shared<Embedded_Folder>(std::move(store), id);
}

MAPIFolder_Ptr Find_Default_Folder(const std::shared_ptr<Store>& store, std::int32_t type) {
  const Folder_Record* folder = store->Default_Folder(type);
  if (folder != nullptr) return Make_Folder(store, folder->id);
  const auto* wanted = tidyfold::Find_Default_Folder(type);
  const std::string name = wanted != nullptr ? wanted->name : std::to_string(type);
  Fail(automation_error::not_found, "The store has no default folder \"" + name + "\".");
}

Item_Ptr Find_Item(const std::shared_ptr<Store>& store, const std::string& entry_id) {
  const auto id = Item_Of_Entry_Id(entry_id);
  if (!id) Fail(automation_error::not_found, "The item is no longer there.");
  return std::make_shared<Embedded_Item>(store, store->Item_By_Id(*id));
}

std::unique_ptr<Store_Writer> Make_Writer(Store& store) {
  return std::make_unique<Embedded_Writer>(store);
}

}  // namespace tidyfold::sqlite
