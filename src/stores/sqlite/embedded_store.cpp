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

std::shared_ptr<Embedded_Store> Embedded_Store::Open(const std::filesystem::path& path, Store_Mode mode) {
  return std::make_shared<Embedded_Store>(sqlite::Store::Open(path, mode));
}

std::shared_ptr<Embedded_Store> Embedded_Store::Create(const std::filesystem::path& path,
                                                       const std::string& store_name) {
  return std::make_shared<Embedded_Store>(sqlite::Store::Create(path, store_name, New_Store_Id()));
}

Embedded_Store::Embedded_Store(std::shared_ptr<sqlite::Store> store)
    : store_(std::move(store)), writer_(sqlite::Make_Writer(store_)) {}

Embedded_Store::~Embedded_Store() = default;

const std::filesystem::path& Embedded_Store::Path() const {
  return store_->Path();
}

Store_Mode Embedded_Store::Mode() const {
  return store_->Mode();
}

std::string Embedded_Store::StoreID() const {
  return store_->StoreID();
}

MAPIFolder_Ptr Embedded_Store::Top_Folder() {
  return sqlite::Make_Folder(store_, store_->Top().id);
}

Store_Writer& Embedded_Store::Writer() {
  return *writer_;
}

New_Item Embedded_Store::Read_Whole_Item(const std::string& entry_id) {
  const auto id = sqlite::Item_Of_Entry_Id(entry_id);
  if (!id)
    throw Automation_Error(automation_error::not_found, "The item is no longer there.", sqlite::error_source);
  return store_->Read_Whole(store_->Item_By_Id(*id));
}

bool Embedded_Store::Is_Protected(const std::string& folder_entry_id) const {
  return store_->Folder(Folder_Number(folder_entry_id)).is_protected;
}

void Embedded_Store::Set_Protected(const std::string& folder_entry_id, bool is_protected) {
  store_->Set_Protected(Folder_Number(folder_entry_id), is_protected);
}

void Embedded_Store::Commit_Pending() {
  store_->Commit_Pending();
}

std::vector<std::string> Embedded_Store::Check() {
  return store_->Check();
}

}  // namespace tidyfold
