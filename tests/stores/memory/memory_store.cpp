#include "stores/memory/memory_store.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"
#include "outlook/default_folders.h"

namespace tidyfold {

using memory::Stored_Folder;
using memory::Stored_Folder_Ptr;
using memory::Stored_Item;
using memory::Stored_Item_Ptr;

namespace {

[[noreturn]] void Fail(std::int32_t number, const std::string& description) {
  throw Automation_Error(number, description, "Memory store");
}

// What the second text of an EntryID ends in.
constexpr std::string_view other_text = "-too";

std::string First_Text(std::string_view entry_id) {
  if (entry_id.ends_with(other_text)) entry_id.remove_suffix(other_text.size());
  return std::string(entry_id);
}

[[noreturn]] void Fail_Not_Found(const std::string& what) {
  Fail(automation_error::not_found, what + " is no longer there.");
}

template <class Element>
const Element& At(const std::vector<Element>& all, std::int32_t index) {
  if (index < 1 || static_cast<std::size_t>(index) > all.size())
    Fail(automation_error::bad_index, "There is no element " + std::to_string(index) + ".");
  return all[static_cast<std::size_t>(index - 1)];
}

}  // namespace

namespace memory {

struct Stored_Folder : MAPIFolder, tidyfold::Store, std::enable_shared_from_this<Stored_Folder> {
  Memory_Store* store = nullptr;  // none: removed
  Stored_Folder* parent = nullptr;
  std::string entry_id, name;
  std::int32_t default_item_type = item_type::mail;
  std::vector<Stored_Folder_Ptr> folders;
  std::vector<Stored_Item_Ptr> items;

  Stored_Folder& Alive() {
    if (store == nullptr) Fail_Not_Found("The folder");
    return *this;
  }
  Stored_Folder_Ptr Shared() { return Alive().shared_from_this(); }
  // As what is asked for the folder gets it; Folders leads to the folder itself.
  MAPIFolder_Ptr Reached();
  MAPIFolder_Ptr Parent() override { return Alive().parent == nullptr ? nullptr : parent->Reached(); }
  std::int32_t DefaultItemType() override { return Alive().default_item_type; }
  std::string EntryID() override { return Alive().entry_id; }
  std::string StoreID() override { return Alive().store->store_id_; }
  std::string Name() override { return Alive().name; }
  Folders_Ptr Folders() override;
  Items_Ptr Items() override;
  Table_Ptr GetTable() override;
  Store_Ptr Store() override { return Alive().store->top_; }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    return Default_Folder_Below(folder_type)->Reached();
  }
  Stored_Folder_Ptr Default_Folder_Below(std::int32_t type) {
    const Default_Folder* wanted = Find_Default_Folder(type);
    Stored_Folder_Ptr found;
    if (const auto role = store->roles_.find(type); role != store->roles_.end()) found = role->second;
    // EntryIDs have the same length and ascend.
    for (const Stored_Folder_Ptr& folder : folders)
      if (!store->roles_.contains(type) && wanted != nullptr && folder->name == wanted->name &&
          (found == nullptr || folder->entry_id < found->entry_id))
        found = folder;
    if (found == nullptr) Fail(automation_error::not_found, "There is no such default folder.");
    return found;
  }
  void Remove(Stored_Item& item);
  // Without recursion: trees may be deep.
  void Remove_For_Good();
};

// The same folder under another text.
struct Other_Text : MAPIFolder {
  explicit Other_Text(Stored_Folder_Ptr named) : folder(std::move(named)) {}
  MAPIFolder_Ptr Parent() override { return folder->Parent(); }
  std::int32_t DefaultItemType() override { return folder->DefaultItemType(); }
  std::string EntryID() override { return folder->EntryID() + std::string(other_text); }
  std::string StoreID() override { return folder->StoreID(); }
  std::string Name() override { return folder->Name(); }
  Folders_Ptr Folders() override { return folder->Folders(); }
  Items_Ptr Items() override { return folder->Items(); }
  Table_Ptr GetTable() override { return folder->GetTable(); }
  Store_Ptr Store() override { return folder->Store(); }
  Stored_Folder_Ptr folder;
};

MAPIFolder_Ptr Stored_Folder::Reached() {
  if (!Alive().store->two_texts_) return Shared();
  return std::make_shared<Other_Text>(Shared());
}

struct Stored_Item : tidyfold::Item, Mapi_Object, std::enable_shared_from_this<Stored_Item> {
  std::string entry_id;
  New_Item data;
  Stored_Folder* folder = nullptr;  // none: removed for good

  Stored_Item& Alive() {
    if (folder == nullptr) Fail_Not_Found("The item");
    return *this;
  }
  void Lie_In(Stored_Folder* target) {
    const Stored_Item_Ptr item = shared_from_this();
    if (folder != nullptr) std::erase(folder->items, item);
    folder = target;
    if (target != nullptr) target->items.push_back(item);
    if (target != nullptr && target->store->new_ids_) target->store->Rename_Item(item);
  }
  std::int32_t Class() override { return Alive().data.item_class; }
  std::string Subject() override { return Alive().data.subject; }
  std::string EntryID() override { return Alive().entry_id; }
  std::string Body(std::size_t characters) override {
    return std::string(First_Characters(Alive().data.body, characters));
  }
  std::shared_ptr<Mapi_Object> MAPIOBJECT() override { return Alive().shared_from_this(); }
  std::string String_Property(std::uint32_t property_tag) override {
    return property_tag == sender_name_tag ? Alive().data.sender : (Alive(), std::string());
  }
  Date ReceivedTime() override { return Alive().data.received; }
  Date LastModificationTime() override { return Alive().data.last_modified; }
  Date DateCompleted() override { return Alive().data.completed; }
  Date DueDate() override { return Alive().data.due; }
  Date End() override { return Alive().data.end; }
  bool UnRead() override { return Alive().data.unread; }
  std::int32_t FlagStatus() override {
    return Alive().data.flagged ? flag_status::marked : flag_status::none;
  }
  std::int64_t Size() override { return Alive().data.size; }
  MAPIFolder_Ptr Parent() override { return Alive().folder->Reached(); }
  void Delete() override {
    if (Alive().folder->store->deletes_for_good_) return Lie_In(nullptr);
    const auto deleted = Alive().folder->store->top_->Default_Folder_Below(default_folder_deleted_items);
    Lie_In(folder == deleted.get() ? nullptr : deleted.get());
  }
  Item_Ptr Move(MAPIFolder& target) override {
    if (target.StoreID() != Alive().folder->StoreID())
      Fail(automation_error::not_supported, "An item can only be moved within its own store.");
    folder->store->Move_Item(entry_id, target);
    if (!folder->store->new_ids_) return shared_from_this();
    // This object is not to be used any more.
    return folder->store->Item(entry_id);
  }
  void Display() override { Alive().folder->store->outlook_.displayed.push_back(entry_id); }
  Table_Row Row() const {
    return {entry_id,
            data.item_class,
            data.subject,
            data.item_class == item_class::mail ? data.sender : data.body,
            data.received,
            data.last_modified,
            data.completed,
            data.due,
            data.end,
            data.unread,
            data.flagged ? flag_status::marked : flag_status::none,
            data.size,
            !data.attachments.empty()};
  }
};

namespace {

class Memory_Items : public Items {
 public:
  explicit Memory_Items(Stored_Folder_Ptr folder) : folder_(std::move(folder)) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(folder_->Alive().items.size()); }
  Item_Ptr Item(std::int32_t index) override { return At(folder_->Alive().items, index); }
  void Remove(std::int32_t index) override {
    const Stored_Item_Ptr item = At(folder_->Alive().items, index);
    folder_->Remove(*item);
  }

 private:
  Stored_Folder_Ptr folder_;
};

// Rows go by the items, whatever their places are meanwhile.
class Memory_Table : public Table {
 public:
  explicit Memory_Table(Stored_Folder_Ptr folder) : folder_(std::move(folder)) {}
  std::vector<Table_Row> GetArray(std::int32_t most) override {
    std::vector<Table_Row> rows;
    while (static_cast<std::int32_t>(rows.size()) < most && (next_ < waiting_.size() || Look_Again())) {
      Stored_Item& item = *waiting_[next_++];
      if (item.folder == folder_.get()) rows.push_back(item.Row());
    }
    return rows;
  }

 private:
  bool Look_Again() {
    next_ = 0;
    waiting_.clear();
    for (const Stored_Item_Ptr& item : folder_->Alive().items)
      if (given_.insert(item).second) waiting_.push_back(item);
    return !waiting_.empty();
  }
  Stored_Folder_Ptr folder_;
  std::vector<Stored_Item_Ptr> waiting_;
  std::size_t next_ = 0;
  std::set<Stored_Item_Ptr> given_;
};

class Memory_Folders : public Folders {
 public:
  explicit Memory_Folders(Stored_Folder_Ptr folder) : folder_(std::move(folder)) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(folder_->Alive().folders.size()); }
  MAPIFolder_Ptr Item(std::int32_t index) override { return At(folder_->Alive().folders, index); }
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override {
    return folder_->Alive().store->Add_Folder(*folder_, name, default_item_type);
  }
  void Remove(std::int32_t index) override {
    const Stored_Folder_Ptr folder = At(folder_->Alive().folders, index);
    folder->Remove_For_Good();
  }

 private:
  Stored_Folder_Ptr folder_;
};

}  // namespace

void Stored_Folder::Remove(Stored_Item& item) {
  store->removing_moves_ ? item.Delete() : item.Lie_In(nullptr);
}

void Stored_Folder::Remove_For_Good() {
  if (parent != nullptr) std::erase(parent->folders, shared_from_this());
  std::vector<Stored_Folder_Ptr> doomed{shared_from_this()};
  while (!doomed.empty()) {
    const Stored_Folder_Ptr last = std::move(doomed.back());
    doomed.pop_back();
    for (const Stored_Item_Ptr& item : std::exchange(last->items, {})) item->folder = nullptr;
    last->store = nullptr;
    last->parent = nullptr;
    for (Stored_Folder_Ptr& below : std::exchange(last->folders, {})) doomed.push_back(std::move(below));
  }
}

Folders_Ptr Stored_Folder::Folders() {
  return std::make_shared<Memory_Folders>(Shared());
}

Items_Ptr Stored_Folder::Items() {
  return std::make_shared<Memory_Items>(Shared());
}

Table_Ptr Stored_Folder::GetTable() {
  return std::make_shared<Memory_Table>(Shared());
}

}  // namespace memory

Memory_Store::Memory_Store(Memory_Outlook& outlook, const std::string& name, std::string store_id)
    : outlook_(outlook), store_id_(std::move(store_id)), top_(std::make_shared<Stored_Folder>()) {
  top_->store = this;
  top_->name = name;
  top_->entry_id = New_Entry_Id();
  folders_.emplace(top_->entry_id, top_);
}

Memory_Store::~Memory_Store() {
  top_->Remove_For_Good();
}

MAPIFolder_Ptr Memory_Store::Top_Folder() {
  return top_;
}

MAPIFolder_Ptr Memory_Store::Add_Folder(MAPIFolder& parent, const std::string& name,
                                        std::int32_t default_item_type) {
  const Stored_Folder_Ptr above = Find_Folder(parent), folder = std::make_shared<Stored_Folder>();
  folder->store = this;
  folder->parent = above.get();
  folder->entry_id = New_Entry_Id();
  folder->name = name;
  folder->default_item_type = default_item_type;
  above->folders.push_back(folder);
  folders_.emplace(folder->entry_id, folder);
  undo_.push_back([folder] { folder->Remove_For_Good(); });
  return folder;
}

std::string Memory_Store::Add_Item(MAPIFolder& folder, const New_Item& item) {
  const Stored_Folder_Ptr target = Find_Folder(folder);
  const auto stored = std::make_shared<Stored_Item>();
  stored->entry_id = New_Entry_Id();
  stored->data = item;
  stored->Lie_In(target.get());
  items_.emplace(stored->entry_id, stored);
  undo_.push_back([stored] { stored->Lie_In(nullptr); });
  return stored->entry_id;
}

std::int64_t Memory_Store::Count_Of(std::int64_t identity) {
  return std::count_if(items_.begin(), items_.end(), [&](const auto& item) {
    return item.second->folder != nullptr && item.second->data.identity == identity;
  });
}

void Memory_Store::Roll_Back() {
  for (auto step = undo_.rbegin(); step != undo_.rend(); ++step) (*step)();
  undo_.clear();
}

MAPIFolder_Ptr Memory_Store::Folder(std::initializer_list<std::string_view> path) {
  Stored_Folder_Ptr folder = top_;
  for (const std::string_view name : path) {
    const auto found = std::find_if(folder->folders.begin(), folder->folders.end(),
                                    [&](const auto& child) { return child->name == name; });
    if (found == folder->folders.end()) Fail_Not_Found("The folder " + std::string(name));
    folder = *found;
  }
  return folder;
}

Item_Ptr Memory_Store::Item(const std::string& entry_id) {
  return Find_Item(entry_id);
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
  item->Lie_In(Find_Folder(folder).get());
}

void Memory_Store::Change_Item(const std::string& entry_id, const std::function<void(New_Item&)>& change) {
  change(Find_Item(entry_id)->data);
}

void Memory_Store::Behave(std::string_view way) {
  new_ids_ = new_ids_ || way == "new ids";
  removing_moves_ = removing_moves_ || way == "moves what is removed";
  two_texts_ = two_texts_ || way == "two texts";
  if (way == "no Deleted Items") {
    deletes_for_good_ = true;
    top_->Default_Folder_Below(default_folder_deleted_items)->Remove_For_Good();
  }
  if (way != "local names") return;
  const std::tuple<std::int32_t, const char*> names[] = {{default_folder_deleted_items, "Gelöschte Elemente"},
                                                         {default_folder_sent, "Gesendete Elemente"},
                                                         {default_folder_drafts, "Entwürfe"}};
  for (const auto& [role, name] : names) {
    const Stored_Folder_Ptr folder = top_->Default_Folder_Below(role);
    folder->name = name;
    roles_[role] = folder;
  }
}

void Memory_Store::Rename_Item(const Stored_Item_Ptr& item) {
  if (items_.erase(item->entry_id) == 0) return;
  item->entry_id = New_Entry_Id();
  items_.emplace(item->entry_id, item);
}

std::string Memory_Store::New_Entry_Id() {
  std::string digits = std::to_string(++last_id_);
  return std::string(16 - digits.size(), '0') + digits;
}

Stored_Folder_Ptr Memory_Store::Find_Folder(MAPIFolder& folder) const {
  const auto found =
      folder.StoreID() == store_id_ ? folders_.find(First_Text(folder.EntryID())) : folders_.end();
  if (found == folders_.end() || found->second->store == nullptr) Fail_Not_Found("The folder");
  return found->second;
}

Stored_Item_Ptr Memory_Store::Find_Item(const std::string& entry_id) const {
  const auto found = items_.find(entry_id);
  if (found == items_.end() || found->second->folder == nullptr) Fail_Not_Found("The item");
  return found->second;
}

Memory_Store& Memory_Outlook::Add_Store(const std::string& name, Default_Folders which) {
  stores_.push_back(std::make_unique<Memory_Store>(*this, name, "STORE" + std::to_string(Stores() + 1)));
  Memory_Store& store = *stores_.back();
  if (which == Default_Folders::All)
    for (const auto& folder : default_folders)
      store.Add_Folder(*store.Top_Folder(), folder.name, folder.item_type);
  return store;
}

std::shared_ptr<Application> Memory_Outlook::GetObject(const std::string& path, const std::string& program) {
  if (!path.empty() || program != "Outlook.Application")
    Fail(automation_error::call_failed, "Nothing of the kind is running: " + program + ".");
  return Borrowed<Application>();
}

MAPIFolder_Ptr Memory_Outlook::GetDefaultFolder(std::int32_t folder_type) {
  if (stores_.empty()) Fail(automation_error::not_found, "No store is open.");
  return stores_.front()->Top_Folder()->Store()->GetDefaultFolder(folder_type);
}

bool Memory_Outlook::CompareEntryIDs(const std::string& one, const std::string& other) {
  return First_Text(one) == First_Text(other);
}

Item_Ptr Memory_Outlook::GetItemFromID(const std::string& entry_id, const std::string& store_id) {
  for (const auto& store : stores_)
    if (store->Top_Folder()->StoreID() == store_id) return store->Item(entry_id);
  Fail_Not_Found("The item's store");
}

MAPIFolder_Ptr Memory_Outlook::Item(std::int32_t index) {
  return At(stores_, index)->Top_Folder();
}

MAPIFolder_Ptr Memory_Outlook::Add(const std::string&, std::int32_t) {
  Fail(automation_error::no_access, "A store cannot be added like a folder.");
}

void Memory_Outlook::Remove(std::int32_t index) {
  At(stores_, index);
  Fail(automation_error::no_access, "A store's top folder cannot be removed.");
}

}  // namespace tidyfold
