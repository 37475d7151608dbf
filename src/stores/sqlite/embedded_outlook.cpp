#include "stores/sqlite/embedded_outlook.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

#include "errors/automation_error.h"
#include "stores/sqlite/objects.h"
#include "stores/sqlite/store.h"

namespace tidyfold {

namespace {

using Store_List = std::vector<std::shared_ptr<Embedded_Store>>;

[[noreturn]] void Fail(std::int32_t number, const std::string& text) {
  throw Automation_Error(number, text, sqlite::error_source);
}

bool Same_File(const std::filesystem::path& left, const std::filesystem::path& right) {
  std::error_code error;
  return std::filesystem::equivalent(left, right, error) && !error;
}

[[noreturn]] void Fail_Twice(const std::filesystem::path& path) {
  throw Store_Open_Error(
      Store_Open_Error::Reason::Locked, path,
      "The store \"" + sqlite::Utf8(path) + "\" is open here already. Name every store once.");
}

}  // namespace

// Shared by all objects of the session and Embedded_Outlook.
struct Embedded_Outlook::Session : Group_Watcher {
  void Group_Ending() override {
    if (watcher != nullptr) watcher->Group_Ending();
  }
  void Group_Ended(const std::string& store_id, bool kept) override {
    if (watcher != nullptr) watcher->Group_Ended(store_id, kept);
  }

  Store_List stores;
  // Includes stores that have left the list, which objects of theirs may keep open.
  std::vector<std::weak_ptr<sqlite::Store>> known;
  Display_Callback display;
  Group_Watcher* watcher = nullptr;
};

namespace {

using Session_Ptr = std::shared_ptr<Embedded_Outlook::Session>;

class Top_Folders : public Folders {
 public:
  explicit Top_Folders(Session_Ptr session) : session_(std::move(session)) {}
  std::int32_t Count() override { return static_cast<std::int32_t>(session_->stores.size()); }
  MAPIFolder_Ptr Item(std::int32_t index) override {
    Check(index);
    return session_->stores[static_cast<std::size_t>(index - 1)]->Top_Folder();
  }
  MAPIFolder_Ptr Add(const std::string&, std::int32_t) override {
    Fail(automation_error::no_access, "A store cannot be added like a folder.");
  }
  void Remove(std::int32_t index) override {
    Check(index);
    Fail(automation_error::no_access, "A store's top folder cannot be removed.");
  }

 private:
  void Check(std::int32_t index) {
    if (index < 1 || index > Count()) {
      Fail(automation_error::bad_index, "There is no store " + std::to_string(index) + ".");
    }
  }
  Session_Ptr session_;
};

class Embedded_Name_Space : public NameSpace {
 public:
  explicit Embedded_Name_Space(Session_Ptr session) : session_(std::move(session)) {}
  Folders_Ptr Folders() override { return std::make_shared<Top_Folders>(session_); }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    // The first store is the default store.
    if (session_->stores.empty()) Fail(automation_error::not_found, "No store is open.");
    return sqlite::Find_Default_Folder(session_->stores.front()->Inner(), folder_type);
  }
  Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) override {
    for (const auto& store : session_->stores) {
      if (store->Inner()->StoreID() == store_id) return sqlite::Find_Item(store->Inner(), entry_id);
    }
    Fail(automation_error::not_found, "The item's store is not open.");
  }

 private:
  Session_Ptr session_;
};

class Embedded_Application : public Application {
 public:
  explicit Embedded_Application(Session_Ptr session) : session_(std::move(session)) {}
  std::shared_ptr<NameSpace> GetNamespace(const std::string& type) override {
    if (type != "MAPI") Fail(automation_error::call_failed, "There is no namespace \"" + type + "\".");
    return std::make_shared<Embedded_Name_Space>(session_);
  }

 private:
  Session_Ptr session_;
};

class Embedded_Mapi_Utils : public Mapi_Utils {
 public:
  std::string HrGetOneProp(Mapi_Object& object, std::uint32_t property_tag) override {
    return object.String_Property(property_tag);
  }
};

// Opens the file, unless it is open already.
std::shared_ptr<Embedded_Store> Obtain(const Session_Ptr& session, const std::filesystem::path& path,
                                       Store_Mode mode, const Store_Progress& progress) {
  std::erase_if(session->known, [](const auto& store) { return store.expired(); });
  for (const auto& known : session->known) {
    auto store = known.lock();
    if (store != nullptr && store->Mode() == mode && Same_File(store->Path(), path)) {
      return std::make_shared<Embedded_Store>(std::move(store));
    }
  }
  return Embedded_Store::Open(path, mode, progress);
}

// A copy of a store file has the identity of its original; when both are open they need different ones.
void Tell_Apart(sqlite::Store& store, const Store_List& list, const Store_List& open) {
  std::string distinct = store.StoreID();
  const auto taken = [&](const auto& other) { return other->StoreID() == distinct; };
  for (int copy = 2;
       std::any_of(list.begin(), list.end(), taken) || std::any_of(open.begin(), open.end(), taken); ++copy) {
    distinct = store.StoreID() + "-" + std::to_string(copy);
  }
  store.Set_StoreID(distinct);
}

void Join(const Session_Ptr& session, Store_List& list, std::shared_ptr<Embedded_Store> store) {
  const std::shared_ptr<sqlite::Store>& inner = store->Inner();
  Tell_Apart(*inner, list, session->stores);
  inner->Set_Display([session = std::weak_ptr(session)](const Displayed_Item& item) {
    const auto target = session.lock();
    if (target == nullptr || !target->display) {
      Fail(automation_error::not_supported, "There is no window here that could show an item.");
    }
    target->display(item);
  });
  inner->Set_Watcher(session);
  session->known.push_back(inner);
  list.push_back(std::move(store));
}

}  // namespace

Embedded_Outlook::Embedded_Outlook() : session_(std::make_shared<Session>()) {}

Embedded_Outlook::~Embedded_Outlook() = default;

void Embedded_Outlook::Open(const std::vector<std::filesystem::path>& paths, Store_Mode mode,
                            const Store_Progress& progress) {
  Store_List list = session_->stores;
  for (const auto& path : paths) {
    for (const auto& store : list) {
      if (Same_File(store->Path(), path)) Fail_Twice(path);
    }
    Join(session_, list, Obtain(session_, path, mode, progress));
  }
  session_->stores = std::move(list);
}

void Embedded_Outlook::Replace(const std::vector<std::filesystem::path>& paths, Store_Mode mode,
                               const Store_Progress& progress) {
  Store_List list;
  for (const auto& path : paths) {
    for (const auto& store : list) {
      if (Same_File(store->Path(), path)) Fail_Twice(path);
    }
    const auto open = std::find_if(session_->stores.begin(), session_->stores.end(), [&](const auto& store) {
      return store->Mode() == mode && Same_File(store->Path(), path);
    });
    if (open != session_->stores.end()) {
      list.push_back(*open);
    } else {
      Join(session_, list, Obtain(session_, path, mode, progress));
    }
  }
  Commit_Pending();
  session_->stores = std::move(list);
}

void Embedded_Outlook::Add(std::shared_ptr<Embedded_Store> store) {
  Join(session_, session_->stores, std::move(store));
}

const std::vector<std::shared_ptr<Embedded_Store>>& Embedded_Outlook::Stores() const {
  return session_->stores;
}

New_Item Embedded_Outlook::Read_Whole_Item(const std::string& store_id, const std::string& entry_id) const {
  for (const auto& store : Stores())
    if (store->StoreID() == store_id) return store->Read_Whole_Item(entry_id);
  throw Automation_Error(automation_error::not_found, "The item's store is not open any more.", "Tidyfold");
}

void Embedded_Outlook::Commit_Pending() {
  std::exception_ptr first_failure;
  const auto stores = session_->known;
  for (const auto& known : stores) {
    const auto store = known.lock();
    if (store == nullptr) continue;
    try {
      store->Commit_Pending();
    } catch (...) {
      if (first_failure == nullptr) first_failure = std::current_exception();
    }
  }
  if (first_failure != nullptr) std::rethrow_exception(first_failure);
}

void Embedded_Outlook::Watch(Group_Watcher* watcher) {
  session_->watcher = watcher;
}

std::string Embedded_Outlook::Place_Of_Store(const std::string& store_id) const {
  for (const auto& store : session_->stores)
    if (store->StoreID() == store_id) return sqlite::Utf8(std::filesystem::absolute(store->Path()));
  return {};
}

namespace {

Embedded_Store& Find_Store(const Store_List& stores, const std::string& store_id) {
  const auto found = std::find_if(stores.begin(), stores.end(),
                                  [&](const auto& store) { return store->StoreID() == store_id; });
  if (found == stores.end()) Fail(automation_error::not_found, "The folder's store is not open.");
  return **found;
}

}  // namespace

bool Embedded_Outlook::Is_Protected(const std::string& store_id, const std::string& entry_id) {
  return Find_Store(session_->stores, store_id).Is_Protected(entry_id);
}

void Embedded_Outlook::Set_Protected(const std::string& store_id, const std::string& entry_id,
                                     bool is_protected) {
  Embedded_Store& store = Find_Store(session_->stores, store_id);
  store.Set_Protected(entry_id, is_protected);
  store.Commit_Pending();
}

bool Embedded_Outlook::Can_Change(const std::string& store_id) {
  return Find_Store(session_->stores, store_id).Mode() == Store_Mode::Read_Write;
}

void Embedded_Outlook::Set_Display(Display_Callback display) {
  session_->display = std::move(display);
}

std::shared_ptr<Application> Embedded_Outlook::GetObject(const std::string& path,
                                                         const std::string& program) {
  if (!path.empty()) Fail(automation_error::call_failed, "There is no object \"" + path + "\".");
  return CreateObject(program);
}

std::shared_ptr<Application> Embedded_Outlook::CreateObject(const std::string& program) {
  if (program != "Outlook.Application") {
    Fail(automation_error::call_failed, "There is no program \"" + program + "\".");
  }
  return std::make_shared<Embedded_Application>(session_);
}

std::shared_ptr<Mapi_Utils> Embedded_Outlook::Create_Mapi_Utils(const std::string& program) {
  if (program != "TidyDll.TidyMAPIUtils") {
    Fail(automation_error::call_failed, "There is no program \"" + program + "\".");
  }
  return std::make_shared<Embedded_Mapi_Utils>();
}

}  // namespace tidyfold
