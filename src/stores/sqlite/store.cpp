#include "stores/sqlite/store.h"

#include <algorithm>
#include <utility>

#include "errors/automation_error.h"
#include "outlook/default_folders.h"
#include "stores/sqlite/check.h"

namespace tidyfold::sqlite {

namespace {

// Too short to be noticed in the window.
constexpr std::chrono::milliseconds clearing_time{5};
constexpr std::int64_t items_per_clearing = 100;

Store_Open_Error::Reason Reason_Of(const Automation_Error& error) {
  using Reason = Store_Open_Error::Reason;
  switch (error.Number()) {
    case automation_error::corrupt_data:
      return Reason::Damaged;
    case automation_error::busy:
      return Reason::Locked;
    case automation_error::no_access:
      return Reason::No_Permission;
    default:
      return Reason::Cannot_Read;
  }
}

}  // namespace

Store::Store(std::filesystem::path path, Store_Mode mode) : path_(std::move(path)), mode_(mode) {}

Store::~Store() {
  if (database_ == nullptr || mode_ == Store_Mode::Read_Only) return;
  try {
    if (writing_) Roll_Back();
    Commit_Pending();
    Clear_Away(std::chrono::hours(1));
  } catch (...) {
    // Nobody is left to report to; what was not committed is lost.
  }
}

std::shared_ptr<Store> Store::Open(const std::filesystem::path& path, Store_Mode mode) {
  std::shared_ptr<Store> store(new Store(path, mode));
  if (mode == Store_Mode::Read_Only) {
    store->reader_ = std::make_unique<Reader_File>(path);
    store->database_ = &store->reader_->Connection();
  } else {
    store->owned_ = Open_For_Writing(path);
    store->database_ = store->owned_.get();
  }
  store->Start();
  return store;
}

std::shared_ptr<Store> Store::Create(const std::filesystem::path& path, const std::string& name,
                                     const std::string& store_id) {
  std::shared_ptr<Store> store(new Store(path, Store_Mode::Read_Write));
  store->owned_ = Create_File(path, name, store_id);
  store->database_ = store->owned_.get();
  try {
    store->Start();
    store->Begin();
    for (const auto& folder : default_folders)
      store->Add_Folder(store->Top().id, folder.name, folder.item_type);
    store->Commit();
  } catch (const Automation_Error& error) {
    store.reset();
    Remove_File(path);
    throw Store_Open_Error(Store_Open_Error::Reason::Cannot_Write, path, error.Description());
  } catch (...) {
    store.reset();
    Remove_File(path);
    throw;
  }
  return store;
}

// Quick checks: the tables exist, the folders form a tree and the index of items can be read.
void Store::Start() {
  try {
    Statement identity(*database_, "SELECT store_id FROM store");
    if (!identity.Step()) database_->Fail_Damaged("it has no identity");
    store_id_ = identity.Text(0);
    statements_ = std::make_unique<Statements>(*database_);
    read_ahead_ = std::make_unique<Read_Ahead>(*database_);
    Refresh();
    Statement last(*database_,
                   "SELECT (SELECT MAX(id) FROM folder), (SELECT MAX(id) FROM item),"
                   " (SELECT MAX(seq) FROM sqlite_sequence WHERE name = 'folder'),"
                   " (SELECT MAX(seq) FROM sqlite_sequence WHERE name = 'item')");
    last.Step();
    next_folder_ = std::max(last.Integer(0), last.Integer(2)) + 1;
    next_item_ = std::max(last.Integer(1), last.Integer(3)) + 1;
  } catch (const Automation_Error& error) {
    throw Store_Open_Error(Reason_Of(error), path_, error.Description());
  }
}

void Store::Fail(std::int32_t number, const std::string& text) const {
  throw Automation_Error(number, text, error_source);
}

std::vector<std::string> Store::Check() {
  Refresh();
  return Check_Store(*database_, folders_);
}

// Folders.

void Store::Refresh() {
  if (known_) return;
  read_ahead_->Forget_All();
  to_clear_ = folders_.Load(*database_);
  known_ = true;
}

Folder_Record& Store::Find_Folder(std::int64_t id) {
  Refresh();
  Folder_Record* folder = folders_.Find(id);
  if (folder == nullptr) Fail(automation_error::not_found, "The folder is no longer there.");
  return *folder;
}

const Folder_Record& Store::Top() {
  Refresh();
  return folders_.Top();
}

const Folder_Record* Store::Default_Folder(std::int32_t type) {
  Refresh();
  return folders_.Default_Folder(type);
}

std::int64_t Store::Add_Folder(std::int64_t parent, const std::string& name, std::int32_t item_type) {
  Folder_Record& above = Find_Folder(parent);
  const std::int64_t id = next_folder_;
  Change([&] {
    statements_->add_folder.Bind(1, id).Bind(2, parent).Bind(3, name).Bind(4, std::int64_t{item_type}).Run();
    ++next_folder_;
    folders_.Add(id, above, name, item_type);
  });
  return id;
}

void Store::Remove_Folder(std::int64_t id) {
  const std::vector<Folder_Record*> doomed = Folder_Tree::With_All_Below(Find_Folder(id));
  Change([&] {
    In_Savepoint([&] {
      for (const Folder_Record* folder : doomed) statements_->mark_removed.Bind(1, folder->id).Run();
    });
    for (const Folder_Record* folder : doomed) {
      read_ahead_->Forget(folder->id);
      to_clear_.push_back(folder->id);
    }
    folders_.Remove(*doomed.front());
    ++age_;
  });
}

void Store::Set_Protected(std::int64_t folder, bool is_protected) {
  Folder_Record& record = Find_Folder(folder);
  if (record.is_protected == is_protected) return;
  Change([&] {
    statements_->protect.Bind(1, folder).Bind(2, std::int64_t{is_protected ? 1 : 0}).Run();
    record.is_protected = is_protected;
  });
}

void Store::Clear_Away(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (clearing_ && known_ && !to_clear_.empty() && std::chrono::steady_clock::now() < end) {
    try {
      statements_->begin.Run();
      statements_->clear_items.Bind(1, to_clear_.back()).Bind(2, items_per_clearing).Run();
      const bool empty = database_->Changes() == 0;
      if (empty) statements_->clear_folder.Bind(1, to_clear_.back()).Run();
      statements_->commit.Run();
      if (empty) to_clear_.pop_back();
    } catch (...) {
      clearing_ = false;  // report it only once; the next opening tries again
      Undo();
      throw;
    }
  }
}

// Transactions.

void Store::Check_Writable() const {
  if (mode_ == Store_Mode::Read_Only) {
    Fail(automation_error::no_access,
         "The store \"" + database_->File() +
             "\" was opened for reading only. Open it for writing to change it.");
  }
}

void Store::Check_Changeable() const {
  Check_Writable();
  if (spoilt_) {
    Fail(automation_error::call_failed,
         "The changes to the store \"" + database_->File() + "\" were undone by an earlier failure.");
  }
}

// A full group is committed before the next change rather than after the last one, so that the caller has
// recorded all changes of a group when it ends. If the commit fails, the next change is not made.
void Store::Begin_Change() {
  Check_Changeable();
  if (!writing_ && pending_ >= changes_per_group) Commit_Pending();
  if (!database_->In_Transaction()) statements_->begin.Run();
}

// The failed change has no effect. SQLite may have rolled back the earlier changes of the group with it.
void Store::After_Failure() {
  known_ = false;
  ++age_;
  if (!database_->In_Transaction()) {
    spoilt_ = writing_;
    Tell_Group_Ended(false);
  } else if (!writing_ && pending_ == 0) {
    Undo();
  }
}

void Store::Commit_Group() {
  if (const auto watcher = watcher_.lock(); watcher != nullptr && pending_ > 0) watcher->Group_Ending();
  try {
    // Changes to a file that was renamed or deleted would be lost silently.
    if (database_->Has_Moved()) database_->Fail_Moved();
    statements_->commit.Run();
  } catch (...) {
    Undo();
    throw;
  }
  Tell_Group_Ended(true);
}

void Store::Undo() {
  known_ = false;
  ++age_;
  // Fails only if SQLite has rolled back by itself.
  sqlite3_exec(database_->Connection(), "ROLLBACK", nullptr, nullptr, nullptr);
  Tell_Group_Ended(false);
}

void Store::Tell_Group_Ended(bool kept) {
  if (std::exchange(pending_, 0) == 0) return;
  if (const auto watcher = watcher_.lock()) watcher->Group_Ended(store_id_, kept);
}

void Store::Commit_Pending() {
  if (mode_ == Store_Mode::Read_Only || writing_) return;
  if (database_->In_Transaction()) Commit_Group();
  Clear_Away(clearing_time);
}

void Store::Begin() {
  Check_Writable();
  if (writing_ && !spoilt_) Fail(automation_error::call_failed, "A transaction is open already.");
  writing_ = spoilt_ = false;
  Commit_Pending();
  statements_->begin.Run();
  writing_ = true;
}

void Store::Commit() {
  if (!writing_) Fail(automation_error::call_failed, "No transaction has been begun.");
  Check_Changeable();
  try {
    Commit_Group();
  } catch (...) {
    spoilt_ = true;
    throw;
  }
  writing_ = false;
}

void Store::Roll_Back() {
  if (!writing_) Fail(automation_error::call_failed, "No transaction has been begun.");
  writing_ = spoilt_ = false;
  Undo();
}

}  // namespace tidyfold::sqlite
