#include "outlook/store_session.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/file_path.h"
#include "controls/interaction.h"
#include "errors/automation_error.h"

namespace tidyfold {

namespace {

using Store_List = std::vector<std::shared_ptr<Mail_Store>>;

[[noreturn]] void Fail(std::int32_t number, const std::string& text) {
  throw Automation_Error(number, text, application_title);
}

[[noreturn]] void Fail_Twice(const Store_Address& address) {
  throw Store_Open_Error(Store_Open_Error::Reason::Locked,
                         address.Is_Server() ? File_Path(address.Text()) : address.path,
                         "The store \"" + address.Text() + "\" is open here already. Name every store once.");
}

}  // namespace

// Shared by all objects of the session and Store_Session.
struct Store_Session::Session : Group_Watcher {
  void Group_Ending() override {
    if (watcher != nullptr) watcher->Group_Ending();
  }
  void Not_Kept(const std::string& store_id, const std::string& entry_id,
                const std::string& reason) override {
    if (watcher != nullptr) watcher->Not_Kept(store_id, entry_id, reason);
  }
  void Renamed(const std::string& store_id, const std::string& entry_id,
               const std::string& new_entry_id) override {
    if (watcher != nullptr) watcher->Renamed(store_id, entry_id, new_entry_id);
  }
  void Group_Ended(const std::string& store_id, bool kept) override {
    if (watcher != nullptr) watcher->Group_Ended(store_id, kept);
  }

  Store_Opener opener;
  Store_List stores;
  // Includes stores that have left the list, which objects of theirs may keep open.
  std::vector<std::weak_ptr<Mail_Store>> known;
  Display_Callback display;
  std::function<bool(const std::string& words)> go_on_though_busy;
  Group_Watcher* watcher = nullptr;
  Folder_Protection* marks = nullptr;
};

namespace {

using Session_Ptr = std::shared_ptr<Store_Session::Session>;

Mail_Store& Find_Store(const Store_List& stores, const std::string& store_id, const char* whose) {
  const auto found = std::find_if(stores.begin(), stores.end(),
                                  [&](const auto& store) { return store->StoreID() == store_id; });
  if (found == stores.end())
    Fail(automation_error::not_found, "The " + std::string(whose) + "'s store is not open.");
  return **found;
}

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

class Session_Name_Space : public NameSpace {
 public:
  explicit Session_Name_Space(Session_Ptr session) : session_(std::move(session)) {}
  Folders_Ptr Folders() override { return std::make_shared<Top_Folders>(session_); }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override {
    // The first store is the default store.
    if (session_->stores.empty()) Fail(automation_error::not_found, "No store is open.");
    return session_->stores.front()->GetDefaultFolder(folder_type);
  }
  Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) override {
    return Find_Store(session_->stores, store_id, "item").GetItemFromID(entry_id);
  }

 private:
  Session_Ptr session_;
};

class Session_Application : public Application {
 public:
  explicit Session_Application(Session_Ptr session) : session_(std::move(session)) {}
  std::shared_ptr<NameSpace> GetNamespace(const std::string& type) override {
    if (type != "MAPI") Fail(automation_error::call_failed, "There is no namespace \"" + type + "\".");
    return std::make_shared<Session_Name_Space>(session_);
  }

 private:
  Session_Ptr session_;
};

class Session_Mapi_Utils : public Mapi_Utils {
 public:
  std::string HrGetOneProp(Mapi_Object& object, std::uint32_t property_tag) override {
    return object.String_Property(property_tag);
  }
};

// Opens the store, unless it is open already.
std::shared_ptr<Mail_Store> Obtain(const Session_Ptr& session, const Store_Address& address,
                                   const Store_Opening& opening) {
  std::erase_if(session->known, [](const auto& store) { return store.expired(); });
  for (const auto& known : session->known) {
    auto store = known.lock();
    if (store != nullptr && store->Mode() == opening.mode && store->Is_At(address)) return store;
  }
  return session->opener(address, opening);
}

// A copy of a store file has the identity of its original; when both are open they need different ones.
void Tell_Apart(Mail_Store& store, const Store_List& list, const Store_List& open) {
  const std::string own = store.StoreID();
  std::string distinct = own;
  const auto taken = [&](const auto& other) { return other.get() != &store && other->StoreID() == distinct; };
  for (int copy = 2;
       std::any_of(list.begin(), list.end(), taken) || std::any_of(open.begin(), open.end(), taken); ++copy) {
    distinct = own + "-" + std::to_string(copy);
  }
  if (distinct != own) store.Set_StoreID(distinct);
}

void Join(const Session_Ptr& session, Store_List& list, std::shared_ptr<Mail_Store> store) {
  Tell_Apart(*store, list, session->stores);
  store->Set_Display([session = std::weak_ptr(session)](const Displayed_Item& item) {
    const auto target = session.lock();
    if (target == nullptr || !target->display) {
      Fail(automation_error::not_supported, "There is no window here that could show an item.");
    }
    target->display(item);
  });
  store->Set_Watcher(session);
  store->Ask_When_Busy([session = std::weak_ptr(session)](const std::string& words) {
    const auto target = session.lock();
    return target != nullptr && target->go_on_though_busy && target->go_on_though_busy(words);
  });
  session->known.push_back(store);
  list.push_back(std::move(store));
}

void Demand_Not_In(const Store_List& list, const Store_Address& address) {
  for (const auto& store : list)
    if (store->Is_At(address)) Fail_Twice(address);
}

}  // namespace

Store_Session::Store_Session(Store_Opener opener) : session_(std::make_shared<Session>()) {
  session_->opener = std::move(opener);
}

Store_Session::~Store_Session() = default;

void Store_Session::Open(const std::vector<Store_Address>& addresses, const Store_Opening& opening) {
  Store_List list = session_->stores;
  for (const Store_Address& address : addresses) {
    Demand_Not_In(list, address);
    Join(session_, list, Obtain(session_, address, opening));
  }
  session_->stores = std::move(list);
}

void Store_Session::Replace(const std::vector<Store_Address>& addresses, const Store_Opening& opening) {
  Store_List list;
  for (const Store_Address& address : addresses) {
    Demand_Not_In(list, address);
    const auto open = std::find_if(session_->stores.begin(), session_->stores.end(), [&](const auto& store) {
      return store->Mode() == opening.mode && store->Is_At(address);
    });
    if (open != session_->stores.end()) {
      list.push_back(*open);
    } else {
      Join(session_, list, Obtain(session_, address, opening));
    }
  }
  Commit_Pending();
  session_->stores = std::move(list);
}

void Store_Session::Add(std::shared_ptr<Mail_Store> store) {
  Join(session_, session_->stores, std::move(store));
}

const std::vector<std::shared_ptr<Mail_Store>>& Store_Session::Open_Stores() const {
  return session_->stores;
}

std::vector<std::string> Store_Session::Names() const {
  std::vector<std::string> names;
  for (const auto& store : session_->stores) names.push_back(store->Address().Text());
  return names;
}

New_Item Store_Session::Read_Whole_Item(const std::string& store_id, const std::string& entry_id) const {
  return Find_Store(session_->stores, store_id, "item").Read_Whole_Item(entry_id);
}

namespace {

// Does it with each store, also where it fails with one before. The list may change meanwhile.
template <class Work>
void With_Each(const std::vector<std::weak_ptr<Mail_Store>>& known, Work&& work) {
  std::vector<std::shared_ptr<Mail_Store>> stores;
  stores.reserve(known.size());
  for (const auto& store : known) stores.push_back(store.lock());
  std::exception_ptr first_failure;
  for (const auto& store : stores) {
    if (store == nullptr) continue;
    try {
      work(*store);
    } catch (...) {
      if (first_failure == nullptr) first_failure = std::current_exception();
    }
  }
  if (first_failure != nullptr) std::rethrow_exception(first_failure);
}

}  // namespace

void Store_Session::Commit_Pending() {
  With_Each(session_->known, [](Mail_Store& store) { store.Commit_Pending(); });
}

bool Store_Session::Commit_Due() {
  bool all = true;
  With_Each(session_->known, [&](Mail_Store& store) { all = store.Commit_Due() && all; });
  return all;
}

void Store_Session::Ask_When_Busy(std::function<bool(const std::string& words)> go_on) {
  session_->go_on_though_busy = std::move(go_on);
}

void Store_Session::Watch(Group_Watcher* watcher) {
  session_->watcher = watcher;
}

std::string Store_Session::Place_Of_Store(const std::string& store_id) const {
  for (const auto& store : session_->stores)
    if (store->StoreID() == store_id) return store->Address().Lasting_Text();
  return {};
}

void Store_Session::Keep_Marks_In(Folder_Protection* marks) {
  session_->marks = marks;
}

bool Store_Session::Is_Protected(const std::string& store_id, const std::string& entry_id) {
  const Mail_Store& store = Find_Store(session_->stores, store_id, "folder");
  if (store.Keeps_Marks()) return store.Is_Protected(entry_id);
  return session_->marks != nullptr && session_->marks->Is_Protected(store_id, entry_id);
}

void Store_Session::Set_Protected(const std::string& store_id, const std::string& entry_id,
                                  bool is_protected) {
  Mail_Store& store = Find_Store(session_->stores, store_id, "folder");
  if (store.Keeps_Marks()) {
    store.Set_Protected(entry_id, is_protected);
    store.Commit_Pending();
  } else if (session_->marks != nullptr) {
    session_->marks->Set_Protected(store_id, entry_id, is_protected);
  } else {
    Fail(automation_error::not_supported, "The store has no place for the protection of folders.");
  }
}

bool Store_Session::Can_Change(const std::string& store_id) {
  const Mail_Store& store = Find_Store(session_->stores, store_id, "folder");
  if (store.Keeps_Marks()) return store.Mode() == Store_Mode::Read_Write;
  return session_->marks != nullptr && session_->marks->Can_Change(store_id);
}

void Store_Session::Set_Display(Display_Callback display) {
  session_->display = std::move(display);
}

std::shared_ptr<Application> Store_Session::GetObject(const std::string& path, const std::string& program) {
  if (!path.empty()) Fail(automation_error::call_failed, "There is no object \"" + path + "\".");
  return CreateObject(program);
}

std::shared_ptr<Application> Store_Session::CreateObject(const std::string& program) {
  if (program != "Outlook.Application") {
    Fail(automation_error::call_failed, "There is no program \"" + program + "\".");
  }
  return std::make_shared<Session_Application>(session_);
}

std::shared_ptr<Mapi_Utils> Store_Session::Create_Mapi_Utils(const std::string& program) {
  if (program != "TidyDll.TidyMAPIUtils") {
    Fail(automation_error::call_failed, "There is no program \"" + program + "\".");
  }
  return std::make_shared<Session_Mapi_Utils>();
}

}  // namespace tidyfold
