// One open store file: its folders in memory, its items behind a read-ahead, its changes in groups.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "outlook/change_groups.h"
#include "outlook/store_writer.h"
#include "stores/sqlite/database.h"
#include "stores/sqlite/displayed_item.h"
#include "stores/sqlite/embedded_store.h"
#include "stores/sqlite/folder_tree.h"
#include "stores/sqlite/read_ahead.h"
#include "stores/sqlite/statements.h"
#include "stores/sqlite/store_file.h"

namespace tidyfold::sqlite {

// A larger group is committed in front of the next change.
inline constexpr int changes_per_group = 100;

// What an item's row holds of its text, where it has no sender to show.
inline constexpr std::size_t row_characters = 20;

// Where an item lies: its folder and its position in it.
struct Item_Place {
  std::int64_t folder = 0, position = 0;
};

// Folders and items are named by their numbers in the file. Every call that names one throws
// Automation_Error (not_found) when it is there no longer, and with the failure of the file otherwise.
class Store : public std::enable_shared_from_this<Store> {
 public:
  // Both throw Store_Open_Error.
  static std::shared_ptr<Store> Open(const std::filesystem::path& path, Store_Mode mode);
  static std::shared_ptr<Store> Create(const std::filesystem::path& path, const std::string& name,
                                       const std::string& store_id);

  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  // Commits what is pending. Who wants to know whether that worked calls Commit_Pending before.
  ~Store();

  const std::filesystem::path& Path() const { return path_; }
  Store_Mode Mode() const { return mode_; }
  const std::string& StoreID() const { return store_id_; }
  // For a copy that is open beside its original: both bear the same identity in the file.
  void Set_StoreID(std::string store_id) { store_id_ = std::move(store_id); }
  void Set_Display(Display_Callback display) { display_ = std::move(display); }
  // Told of this store's groups of changes, and of the writer's transactions, for as long as it exists.
  void Set_Watcher(std::weak_ptr<Group_Watcher> watcher) { watcher_ = std::move(watcher); }

  // Records are good until the next change.
  const Folder_Record& Folder(std::int64_t id) { return Find_Folder(id); }
  const Folder_Record& Top();
  // By its OlDefaultFolders number; nullptr when there is none.
  const Folder_Record* Default_Folder(std::int32_t type);
  std::int64_t Add_Folder(std::int64_t parent, const std::string& name, std::int32_t item_type);
  // With all that is in it.
  void Remove_Folder(std::int64_t id);

  // By place in the folder, from 1. Throws Automation_Error (bad_index).
  Found_Item Item_At(std::int64_t folder, std::int32_t place);
  Found_Item Item_By_Id(std::int64_t id);
  // Grows with every change that moves or removes anything: while it stays, what was read is still so.
  std::uint64_t Age() const { return age_; }
  Item_Place Locate(std::int64_t id);
  std::string Sender(std::int64_t id);
  std::string Body(std::int64_t id);
  void Display(const Found_Item& item, std::int64_t folder);

  // `place` must be where the item lies. These return where it lies now.
  Item_Place Move_Item(std::int64_t id, Item_Place place, std::int64_t folder);
  // Moves to Deleted Items; removes for good from there (folder 0).
  Item_Place Delete_Item(std::int64_t id, Item_Place place);
  void Remove_Item(std::int64_t id, Item_Place place);
  // Returns the new item's number.
  std::int64_t Add_Item(std::int64_t folder, const New_Item& item);

  // Also clears away a little of what folders held that were removed.
  void Commit_Pending();
  // The writer's transaction. A failure that SQLite answers by rolling back spoils it until Roll_Back.
  void Begin();
  void Commit();
  void Roll_Back();

  std::vector<std::string> Check();

 private:
  Store(std::filesystem::path path, Store_Mode mode);
  void Start();

  Folder_Record& Find_Folder(std::int64_t id);
  // Goes on clearing away what folders held that were removed, for about so long.
  void Clear_Away(std::chrono::milliseconds time);
  // Reads the folders anew where the file may differ from what is known of it.
  void Refresh();
  void Item_Left(Item_Place place);

  void Check_Writable() const;
  void Check_Changeable() const;
  void Begin_Change();
  void After_Failure();
  void Commit_Group();
  void Undo();
  void Tell_Group_Ended(bool kept);
  // Runs one change. What it does to the file must be one statement or stand in In_Savepoint.
  template <class Work>
  void Change(Work&& work) {
    Begin_Change();
    try {
      work();
    } catch (...) {
      After_Failure();
      throw;
    }
    ++pending_;
  }
  // Statements that are done all or not at all.
  template <class Work>
  void In_Savepoint(Work&& work) {
    statements_->save.Run();
    try {
      work();
    } catch (...) {
      if (database_->In_Transaction()) database_->Execute("ROLLBACK TO change; RELEASE change");
      throw;
    }
    statements_->release.Run();
  }
  void Insert_Item(std::int64_t id, Item_Place place, const New_Item& item);

  [[noreturn]] void Fail(std::int32_t number, const std::string& text) const;
  [[noreturn]] void Fail_Item_Gone() const;

  std::filesystem::path path_;
  Store_Mode mode_;
  std::unique_ptr<Database> owned_;      // of a writer
  std::unique_ptr<Reader_File> reader_;  // of a reader
  Database* database_ = nullptr;
  std::unique_ptr<Statements> statements_;
  std::unique_ptr<Read_Ahead> read_ahead_;

  std::string store_id_;
  Display_Callback display_;
  std::weak_ptr<Group_Watcher> watcher_;
  Folder_Tree folders_;
  bool known_ = false;  // folders_ agrees with the file
  // Numbers are given here, not by SQLite: after a rollback it would give the same ones again.
  std::int64_t next_folder_ = 1, next_item_ = 1;
  std::vector<std::int64_t> to_clear_;  // folders that were removed and may still hold items
  std::uint64_t age_ = 0;
  int pending_ = 0;  // changes in the open transaction
  bool writing_ = false, spoilt_ = false;
  bool clearing_ = true;  // it has not failed yet
};

}  // namespace tidyfold::sqlite
