#include "stores/sqlite/embedded_store.h"

#include <array>
#include <random>
#include <utility>

#include "errors/automation_error.h"
#include "stores/sqlite/entry_id.h"
#include "stores/sqlite/objects.h"
#include "stores/sqlite/store.h"

namespace tidyfold {

namespace {

std::string New_Store_Id() {
  std::random_device random;
  std::uniform_int_distribution<int> digit(0, 15);
  std::string id(32, '0');
  for (char& character : id) character = "0123456789ABCDEF"[digit(random)];
  return id;
}

std::int64_t Folder_Number(const std::string& entry_id) {
  const auto id = sqlite::Folder_Of_Entry_Id(entry_id);
  if (!id)
    throw Automation_Error(automation_error::not_found, "The folder is no longer there.",
                           sqlite::error_source);
  return *id;
}

}  // namespace

namespace {

// One and the same object keeps both alive.
std::shared_ptr<Embedded_Store> Face_Of(const std::shared_ptr<sqlite::Store>& store) {
  return {store, &store->Face()};
}

}  // namespace

std::shared_ptr<Embedded_Store> Embedded_Store::Open(const std::filesystem::path& path, Store_Mode mode,
                                                     const Store_Progress& progress) {
  return Face_Of(sqlite::Store::Open(path, mode, progress));
}

std::shared_ptr<Embedded_Store> Embedded_Store::Create(const std::filesystem::path& path,
                                                       const std::string& store_name) {
  return Face_Of(sqlite::Store::Create(path, store_name, New_Store_Id()));
}

Embedded_Store::Embedded_Store(sqlite::Store& store)
    : store_(store), address_(store.Path()), writer_(sqlite::Make_Writer(store)) {}

Embedded_Store::~Embedded_Store() = default;

const std::filesystem::path& Embedded_Store::Path() const {
  return store_.Path();
}

bool Embedded_Store::Is_At(const Store_Address& address) const {
  std::error_code error;
  return address.Is_File() && std::filesystem::equivalent(Path(), address.path, error) && !error;
}

Store_Mode Embedded_Store::Mode() const {
  return store_.Mode();
}

std::string Embedded_Store::StoreID() const {
  return store_.StoreID();
}

void Embedded_Store::Set_StoreID(std::string store_id) {
  store_.Set_StoreID(std::move(store_id));
}

MAPIFolder_Ptr Embedded_Store::Top_Folder() {
  return sqlite::Make_Folder(store_.shared_from_this(), store_.Top().id);
}

MAPIFolder_Ptr Embedded_Store::GetDefaultFolder(std::int32_t folder_type) {
  return sqlite::Find_Default_Folder(store_.shared_from_this(), folder_type);
}

Item_Ptr Embedded_Store::GetItemFromID(const std::string& entry_id) {
  return sqlite::Find_Item(store_.shared_from_this(), entry_id);
}

Store_Writer& Embedded_Store::Writer() {
  return *writer_;
}

New_Item Embedded_Store::Read_Whole_Item(const std::string& entry_id) {
  const auto id = sqlite::Item_Of_Entry_Id(entry_id);
  if (!id)
    throw Automation_Error(automation_error::not_found, "The item is no longer there.", sqlite::error_source);
  return store_.Read_Whole(store_.Item_By_Id(*id));
}

bool Embedded_Store::Is_Protected(const std::string& folder_entry_id) const {
  return store_.Folder(Folder_Number(folder_entry_id)).is_protected;
}

void Embedded_Store::Set_Protected(const std::string& folder_entry_id, bool is_protected) {
  store_.Set_Protected(Folder_Number(folder_entry_id), is_protected);
}

void Embedded_Store::Set_Display(Display_Callback display) {
  store_.Set_Display(std::move(display));
}

void Embedded_Store::Set_Watcher(std::weak_ptr<Group_Watcher> watcher) {
  store_.Set_Watcher(std::move(watcher));
}

void Embedded_Store::Commit_Pending() {
  store_.Commit_Pending();
}

std::int64_t Embedded_Store::Unused_Bytes() const {
  return store_.Unused_Bytes();
}

Compacted Embedded_Store::Compact(const Store_Progress& progress) {
  return store_.Compact(progress);
}

std::vector<std::string> Embedded_Store::Check() {
  return store_.Check();
}

}  // namespace tidyfold
