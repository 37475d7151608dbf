#include "stores/memory/memory_store.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"
#include "outlook/default_folders.h"

namespace tidyfold {

namespace {

[[noreturn]] void Fail(std::int32_t number, const std::string& description) {
  throw Automation_Error(number, description, "Memory store");
}

[[noreturn]] void Fail_Not_Found(const std::string& what) {
  Fail(automation_error::not_found, what + " is no longer there.");
}

// Converts an index from 1 to a position from 0.
std::size_t Position(std::int32_t index, std::size_t size) {
  if (index < 1 || static_cast<std::size_t>(index) > size) {
    Fail(automation_error::bad_index, "There is no element " + std::to_string(index) + ".");
  }
  return static_cast<std::size_t>(index - 1);
}

}  // namespace

namespace memory {

struct Stored_Item {
  std::string entry_id;
  New_Item data;
  Stored_Folder* folder = nullptr;  // none: removed for good
  std::uint64_t place = 0;          // ascending within the folder
  int reads = 0;
};

struct Stored_Folder : std::enable_shared_from_this<Stored_Folder> {
  Memory_Store* store = nullptr;  // none: removed
  Stored_Folder* parent = nullptr;
  std::string entry_id;
  std::string name;
  std::int32_t default_item_type = item_type::mail;
  std::vector<Stored_Folder_Ptr> folders;
  std::vector<Stored_Item_Ptr> items;
  std::uint64_t last_place = 0;

  Memory_Outlook& Outlook() const { return store->outlook_; }
  std::string Store_Id() const { return store->StoreID(); }
  const Stored_Folder_Ptr& Top() const { return store->top_; }

  void Append(const Stored_Item_Ptr& item) {
    item->folder = this;
    item->place = ++last_place;
    items.push_back(item);
  }
};

namespace {

void Take_Out(Stored_Item& item) {
  std::vector<Stored_Item_Ptr>& items = item.folder->items;
  items.erase(std::lower_bound(items.begin(), items.end(), item.place,
                               [](const auto& other, std::uint64_t place) { return other->place < place; }));
  item.folder = nullptr;
}

void Remove_For_Good(Stored_Item& item) {
  if (item.folder != nullptr) Take_Out(item);
  item.data = {};
}

// Without recursion: trees may be deep.
void Remove_For_Good(const Stored_Folder_Ptr& folder) {
  if (folder->parent != nullptr) std::erase(folder->parent->folders, folder);
  std::vector<Stored_Folder_Ptr> doomed{folder};
  while (!doomed.empty()) {
    const Stored_Folder_Ptr last = std::move(doomed.back());
    doomed.pop_back();
    for (const Stored_Item_Ptr& item : std::exchange(last->items, {})) {
      item->folder = nullptr;
      item->data = {};
    }
    last->store = nullptr;
    last->parent = nullptr;
    doomed.insert(doomed.end(), last->folders.begin(), last->folders.end());
    last->folders.clear();
  }
}

Stored_Folder_Ptr Child(const Stored_Folder& folder, std::string_view name) {
  const auto found = std::find_if(folder.folders.begin(), folder.folders.end(),
                                  [&](const Stored_Folder_Ptr& child) { return child->name == name; });
  return found == folder.folders.end() ? nullptr : *found;
}

// EntryIDs have the same length and ascend.
Stored_Folder_Ptr Default_Folder_Of(const Stored_Folder& top, std::int32_t type) {
  const Default_Folder* wanted = Find_Default_Folder(type);
  Stored_Folder_Ptr found;
  for (const Stored_Folder_Ptr& folder : top.folders) {
    const bool fits = wanted != nullptr && folder->name == wanted->name;
    if (fits && (found == nullptr || folder->entry_id < found->entry_id)) found = folder;
  }
  return found;
}

MAPIFolder_Ptr Handle(const Stored_Folder_Ptr& folder);

class Memory_Mapi_Object : public Mapi_Object {
 public:
  explicit Memory_Mapi_Object(Stored_Item_Ptr item) : item_(std::move(item)) {}
  std::string String_Property(std::uint32_t property_tag) override {
    if (item_->folder == nullptr) Fail_Not_Found("The item");
    return property_tag == sender_name_tag ? item_->data.sender : std::string();
  }

 private:
  Stored_Item_Ptr item_;
};

class Memory_Item : public Item {
 public:
  explicit Memory_Item(Stored_Item_Ptr item) : item_(std::move(item)) {}
  std::int32_t Class() override { return Data().item_class; }
  std::string Subject() override { return Data().subject; }
  std::string EntryID() override { return Alive().entry_id; }
  std::string Body(std::size_t characters) override {
    return std::string(First_Characters(Data().body, characters));
  }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override {
    Alive();
    return std::make_shared<Memory_Mapi_Object>(item_);
  }
  Date ReceivedTime() override { return Data().received; }
  Date LastModificationTime() override { return Data().last_modified; }
  Date DateCompleted() override { return Data().completed; }
  Date DueDate() override { return Data().due; }
  Date End() override { return Data().end; }
  bool UnRead() override { return Data().unread; }
  std::int32_t FlagStatus() override { return Data().flagged ? flag_status::marked : flag_status::none; }
  std::int64_t Size() override { return Data().size; }
  MAPIFolder_Ptr Parent() override { return Handle(Alive().folder->shared_from_this()); }
  void Delete() override {
    const auto deleted_items = Default_Folder_Of(*Alive().folder->Top(), default_folder_deleted_items);
    if (deleted_items == nullptr) {
      Fail(automation_error::not_found,
           "The store has no \"Deleted Items\" folder that the item could be moved to.");
    }
    if (item_->folder == deleted_items.get()) {
      Remove_For_Good(*item_);
    } else {
      Take_Out(*item_);
      deleted_items->Append(item_);
    }
  }
  Item_Ptr Move(MAPIFolder& folder) override {
    Memory_Store& store = *Alive().folder->store;
    if (folder.StoreID() != store.StoreID())
      Fail(automation_error::not_supported, "An item can only be moved within its own store.");
    store.Move_Item(item_->entry_id, folder);
    return std::make_shared<Memory_Item>(item_);
  }
  void Display() override { Alive().folder->Outlook().displayed.push_back(item_->entry_id); }

 private:
  Stored_Item& Alive() {
    if (item_->folder == nullptr) Fail_Not_Found("The item");
    return *item_;
  }
  const New_Item& Data() { return Alive().data; }

  Stored_Item_Ptr item_;
};

// The common part of folders and their collections.
class Folder_View {
 protected:
  explicit Folder_View(Stored_Folder_Ptr folder) : folder_(std::move(folder)) {}
  Stored_Folder& Alive() {
    if (folder_->store == nullptr) Fail_Not_Found("The folder");
    return *folder_;
  }
  const Stored_Folder_Ptr& Shared() {
    Alive();
    return folder_;
  }

 private:
  Stored_Folder_Ptr folder_;
};

class Memory_Items : public Items, Folder_View {
 public:
  explicit Memory_Items(const Stored_Folder_Ptr& folder) : Folder_View(folder) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(Alive().items.size()); }
  Item_Ptr Item(std::int32_t index) override {
    const Stored_Item_Ptr& item = At(index);
    ++item->reads;
    return std::make_shared<Memory_Item>(item);
  }
  void Remove(std::int32_t index) override {
    const Stored_Item_Ptr item = At(index);
    Remove_For_Good(*item);
  }

 private:
  const Stored_Item_Ptr& At(std::int32_t index) {
    auto& items = Alive().items;
    return items[Position(index, items.size())];
  }
};

class Memory_Folders : public Folders, Folder_View {
 public:
  explicit Memory_Folders(const Stored_Folder_Ptr& folder) : Folder_View(folder) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(Alive().folders.size()); }
  MAPIFolder_Ptr Item(std::int32_t index) override { return Handle(At(index)); }
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override {
    Stored_Folder& folder = Alive();
    return folder.store->Add_Folder(*Handle(folder.shared_from_this()), name, default_item_type);
  }
  void Remove(std::int32_t index) override {
    const Stored_Folder_Ptr folder = At(index);
    Remove_For_Good(folder);
  }

 private:
  const Stored_Folder_Ptr& At(std::int32_t index) {
    auto& folders = Alive().folders;
    return folders[Position(index, folders.size())];
  }
};

class Memory_Store_Object : public Store {
 public:
  explicit Memory_Store_Object(Stored_Folder_Ptr top) : top_(std::move(top)) {}
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    const Stored_Folder_Ptr folder = Default_Folder_Of(*top_, folder_type);
    if (folder == nullptr) Fail(automation_error::not_found, "There is no such default folder.");
    return Handle(folder);
  }

 private:
  Stored_Folder_Ptr top_;
};

class Memory_Folder : public MAPIFolder, Folder_View {
 public:
  explicit Memory_Folder(const Stored_Folder_Ptr& folder) : Folder_View(folder) {}
  MAPIFolder_Ptr Parent() override {
    Stored_Folder* parent = Alive().parent;
    return parent == nullptr ? nullptr : Handle(parent->shared_from_this());
  }
  std::int32_t DefaultItemType() override { return Alive().default_item_type; }
  std::string EntryID() override { return Alive().entry_id; }
  std::string StoreID() override { return Alive().Store_Id(); }
  std::string Name() override { return Alive().name; }
  Folders_Ptr Folders() override { return std::make_shared<Memory_Folders>(Shared()); }
  Items_Ptr Items() override { return std::make_shared<Memory_Items>(Shared()); }
  Store_Ptr Store() override { return std::make_shared<Memory_Store_Object>(Alive().Top()); }
};

MAPIFolder_Ptr Handle(const Stored_Folder_Ptr& folder) {
  return std::make_shared<Memory_Folder>(folder);
}

class Memory_Top_Folders : public Folders {
 public:
  explicit Memory_Top_Folders(Memory_Outlook& outlook) : outlook_(outlook) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(outlook_.Stores()); }
  MAPIFolder_Ptr Item(std::int32_t index) override {
    return outlook_.Store(Position(index, outlook_.Stores()) + 1).Top_Folder();
  }
  MAPIFolder_Ptr Add(const std::string&, std::int32_t) override {
    Fail(automation_error::no_access, "A store cannot be added like a folder.");
  }
  void Remove(std::int32_t index) override {
    Position(index, outlook_.Stores());
    Fail(automation_error::no_access, "A store's top folder cannot be removed.");
  }

 private:
  Memory_Outlook& outlook_;
};

class Memory_Name_Space : public NameSpace {
 public:
  explicit Memory_Name_Space(Memory_Outlook& outlook) : outlook_(outlook) {}
  Folders_Ptr Folders() override { return std::make_shared<Memory_Top_Folders>(outlook_); }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    if (outlook_.Stores() == 0) Fail(automation_error::not_found, "No store is open.");
    return outlook_.Store(1).Top_Folder()->Store()->GetDefaultFolder(folder_type);
  }
  Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) override {
    for (std::size_t number = 1; number <= outlook_.Stores(); ++number) {
      if (outlook_.Store(number).StoreID() == store_id) return outlook_.Store(number).Item(entry_id);
    }
    Fail_Not_Found("The item's store");
  }

 private:
  Memory_Outlook& outlook_;
};

class Memory_Application : public Application {
 public:
  explicit Memory_Application(Memory_Outlook& outlook) : outlook_(outlook) {}
  std::shared_ptr<NameSpace> GetNamespace(const std::string& type) override {
    if (type != "MAPI" || !outlook_.namespace_available) {
      Fail(automation_error::call_failed, "There is no namespace \"" + type + "\".");
    }
    return std::make_shared<Memory_Name_Space>(outlook_);
  }

 private:
  Memory_Outlook& outlook_;
};

class Memory_Mapi_Utils : public Mapi_Utils {
 public:
  std::string HrGetOneProp(Mapi_Object& object, std::uint32_t property_tag) override {
    return object.String_Property(property_tag);
  }
};

}  // namespace
}  // namespace memory

using memory::Stored_Folder;
using memory::Stored_Folder_Ptr;
using memory::Stored_Item;
using memory::Stored_Item_Ptr;

Memory_Store::Memory_Store(Memory_Outlook& outlook, const std::string& name, std::string store_id)
    : outlook_(outlook), store_id_(std::move(store_id)), top_(std::make_shared<Stored_Folder>()) {
  top_->store = this;
  top_->name = name;
  top_->entry_id = New_Entry_Id();
  folders_.emplace(top_->entry_id, top_);
}

Memory_Store::~Memory_Store() {
  memory::Remove_For_Good(top_);
}

MAPIFolder_Ptr Memory_Store::Top_Folder() {
  return memory::Handle(top_);
}

MAPIFolder_Ptr Memory_Store::Add_Folder(MAPIFolder& parent, const std::string& name,
                                        std::int32_t default_item_type) {
  const Stored_Folder_Ptr above = Find_Folder(parent);
  const auto folder = std::make_shared<Stored_Folder>();
  folder->store = this;
  folder->parent = above.get();
  folder->name = name;
  folder->default_item_type = default_item_type;
  folder->entry_id = New_Entry_Id();
  above->folders.push_back(folder);
  folders_.emplace(folder->entry_id, folder);
  if (in_transaction_) undo_.push_back([folder] { memory::Remove_For_Good(folder); });
  return memory::Handle(folder);
}

std::string Memory_Store::Add_Item(MAPIFolder& folder, const New_Item& item) {
  const Stored_Folder_Ptr target = Find_Folder(folder);
  const auto stored = std::make_shared<Stored_Item>();
  stored->entry_id = New_Entry_Id();
  stored->data = item;
  target->Append(stored);
  items_.emplace(stored->entry_id, stored);
  if (in_transaction_) undo_.push_back([stored] { memory::Remove_For_Good(*stored); });
  return stored->entry_id;
}

std::int64_t Memory_Store::Count_Of(std::int64_t identity) {
  return std::count_if(items_.begin(), items_.end(), [&](const auto& item) {
    return item.second->folder != nullptr && item.second->data.identity == identity;
  });
}

void Memory_Store::Begin() {
  Check_Transaction(false);
  in_transaction_ = true;
}

void Memory_Store::Commit() {
  Check_Transaction(true);
  in_transaction_ = false;
  undo_.clear();
}

void Memory_Store::Roll_Back() {
  Check_Transaction(true);
  in_transaction_ = false;
  for (auto step = undo_.rbegin(); step != undo_.rend(); ++step) (*step)();
  undo_.clear();
}

void Memory_Store::Check_Transaction(bool open) const {
  if (in_transaction_ != open) {
    Fail(automation_error::call_failed,
         open ? "No transaction has been begun." : "A transaction is open already.");
  }
}

MAPIFolder_Ptr Memory_Store::Folder(std::initializer_list<std::string_view> path) {
  Stored_Folder_Ptr folder = top_;
  for (const std::string_view name : path) {
    folder = memory::Child(*folder, name);
    if (folder == nullptr) Fail(automation_error::not_found, "There is no folder " + std::string(name) + ".");
  }
  return memory::Handle(folder);
}

Item_Ptr Memory_Store::Item(const std::string& entry_id) {
  return std::make_shared<memory::Memory_Item>(Find_Item(entry_id));
}

void Memory_Store::Rename_Folder(MAPIFolder& folder, const std::string& name) {
  Find_Folder(folder)->name = name;
}

void Memory_Store::Move_Folder(MAPIFolder& folder, MAPIFolder& new_parent) {
  const Stored_Folder_Ptr moved = Find_Folder(folder), above = Find_Folder(new_parent);
  std::erase(moved->parent->folders, moved);
  moved->parent = above.get();
  above->folders.push_back(moved);
}

void Memory_Store::Move_Item(const std::string& entry_id, MAPIFolder& folder) {
  const Stored_Item_Ptr item = Find_Item(entry_id);
  const Stored_Folder_Ptr target = Find_Folder(folder);
  memory::Take_Out(*item);
  target->Append(item);
}

void Memory_Store::Change_Item(const std::string& entry_id, const std::function<void(New_Item&)>& change) {
  change(Find_Item(entry_id)->data);
}

int Memory_Store::Reads(const std::string& entry_id) const {
  const auto found = items_.find(entry_id);
  return found == items_.end() ? 0 : found->second->reads;
}

std::string Memory_Store::New_Entry_Id() {
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%016llX", static_cast<unsigned long long>(++last_id_));
  return text.data();
}

Stored_Folder_Ptr Memory_Store::Find_Folder(MAPIFolder& folder) const {
  if (folder.StoreID() == store_id_) {
    const auto found = folders_.find(folder.EntryID());
    if (found != folders_.end() && found->second->store != nullptr) return found->second;
  }
  Fail_Not_Found("The folder");
}

Stored_Item_Ptr Memory_Store::Find_Item(const std::string& entry_id) const {
  const auto found = items_.find(entry_id);
  if (found == items_.end() || found->second->folder == nullptr) Fail_Not_Found("The item");
  return found->second;
}

Memory_Store& Memory_Outlook::Add_Store(const std::string& name, Default_Folders which) {
  stores_.push_back(
      std::make_unique<Memory_Store>(*this, name, "STORE" + std::to_string(stores_.size() + 1)));
  Memory_Store& store = *stores_.back();
  if (which == Default_Folders::All) {
    const MAPIFolder_Ptr top = store.Top_Folder();
    for (const auto& folder : default_folders) store.Add_Folder(*top, folder.name, folder.item_type);
  }
  return store;
}

std::shared_ptr<Application> Memory_Outlook::GetObject(const std::string& path, const std::string& program) {
  if (!running || !path.empty() || program != "Outlook.Application") {
    Fail(automation_error::call_failed, "Nothing of the kind is running: " + program + ".");
  }
  return std::make_shared<memory::Memory_Application>(*this);
}

std::shared_ptr<Application> Memory_Outlook::CreateObject(const std::string& program) {
  ++create_object_calls;
  if (!startable || program != "Outlook.Application") {
    Fail(automation_error::call_failed, "It cannot be started: " + program + ".");
  }
  running = true;
  return std::make_shared<memory::Memory_Application>(*this);
}

std::shared_ptr<Mapi_Utils> Memory_Outlook::Create_Mapi_Utils(const std::string& program) {
  if (!mapi_utils_available || program != "TidyDll.TidyMAPIUtils") {
    Fail(automation_error::call_failed, "It cannot be created: " + program + ".");
  }
  return std::make_shared<memory::Memory_Mapi_Utils>();
}

}  // namespace tidyfold
