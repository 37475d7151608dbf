// An open store file: keeps the folders in memory, reads items ahead and groups changes into transactions.
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
#include "stores/sqlite/embedded_store.h"
#include "stores/sqlite/folder_tree.h"
#include "stores/sqlite/log_keeper.h"
#include "stores/sqlite/packer.h"
#include "stores/sqlite/read_ahead.h"
#include "stores/sqlite/statements.h"
#include "stores/sqlite/store_draft.h"
#include "stores/sqlite/store_file.h"

namespace tidyfold::sqlite {

// A group of this size is committed before the next change.
inline constexpr int changes_per_group = 100;

// Characters of the text in the row of an item without sender.
inline constexpr std::size_t row_characters = 20;

// An item's folder and position in it.
struct Item_Place {
  std::int64_t folder = 0, position = 0;
};

// Folders and items are identified by their numbers in the file. Calls throw Automation_Error (not_found)
// when the folder or item is gone, and as Database does for failures of the file.
class Store : public std::enable_shared_from_this<Store> {
 public:
  // Both throw Store_Open_Error.
  static std::shared_ptr<Store> Open(const std::filesystem::path& path, Store_Mode mode,
                                     const Store_Progress& progress = {});
  static std::shared_ptr<Store> Create(const std::filesystem::path& path, const std::string& name,
                                       const std::string& store_id);

  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  // Commits pending changes and ignores failures; call Commit_Pending first to see them.
  ~Store();

  const std::filesystem::path& Path() const { return path_; }
  Store_Mode Mode() const { return mode_; }
  const std::string& StoreID() const { return store_id_; }
  // For a copy that is open beside its original, which has the same identity in the file.
  void Set_StoreID(std::string store_id) { store_id_ = std::move(store_id); }
  void Set_Display(Display_Callback display) { display_ = std::move(display); }
  // Makes the file follow from what is written into it alone.
  void Seed_Log(std::uint64_t seed) { log_keeper_->Seed(seed); }
  // What others see of the store.
  Embedded_Store& Face() { return face_; }
  // Hears of this store's groups of changes and of the writer's transactions.
  void Set_Watcher(std::weak_ptr<Group_Watcher> watcher) { watcher_ = std::move(watcher); }

  // Records are valid until the next change.
  const Folder_Record& Folder(std::int64_t id) { return Find_Folder(id); }
  const Folder_Record& Top();
  // By its OlDefaultFolders number; nullptr when there is none.
  const Folder_Record* Default_Folder(std::int32_t type);
  std::int64_t Add_Folder(std::int64_t parent, const std::string& name, std::int32_t item_type);
  // Removes the folder with everything in it.
  void Remove_Folder(std::int64_t id);
  void Set_Protected(std::int64_t folder, bool is_protected);

  // By index in the folder, from 1. Throws Automation_Error (bad_index).
  Found_Item Item_At(std::int64_t folder, std::int32_t place);
  Found_Item Item_By_Id(std::int64_t id);
  // See Read_Ahead::Behind.
  std::vector<Table_Row> Rows_Behind(std::int64_t folder, std::int64_t& position, std::int32_t most);
  // Incremented by every change that moves or removes anything. What was read at the same age is still valid.
  std::uint64_t Age() const { return age_; }
  Item_Place Locate(std::int64_t id);
  std::string Sender(std::int64_t id);
  std::string Body(std::int64_t id);
  New_Item Read_Whole(const Found_Item& item);
  std::int64_t Count_Of(std::int64_t identity);
  // See Store_Writer; by item numbers, 0 for none.
  std::int64_t Fill_Identities(std::int64_t after, std::int32_t most,
                               const std::function<std::int64_t(const New_Item&)>& identity_of);
  void Display(const Found_Item& item, std::int64_t folder);

  // `place` must be the item's current place. Both return the new one.
  Item_Place Move_Item(std::int64_t id, Item_Place place, std::int64_t folder);
  // Moves to Deleted Items. An item that is there already is removed for good, and folder 0 returned.
  Item_Place Delete_Item(std::int64_t id, Item_Place place);
  void Remove_Item(std::int64_t id, Item_Place place);
  // Appends to the folder and returns the new item's number.
  std::int64_t Add_Item(std::int64_t folder, const New_Item& item);

  // Also deletes some of the items of removed folders.
  void Commit_Pending();
  // The writer's transaction. After a failure for which SQLite rolls back, it accepts nothing but Roll_Back
  // or a new Begin.
  void Begin();
  void Commit();
  void Roll_Back();

  std::vector<std::string> Check();
  std::int64_t Unused_Bytes();
  Compacted Compact(const Store_Progress& progress);

 private:
  Store(std::filesystem::path path, Store_Mode mode);
  void Start();
  // Prepares what works on the database that is open now.
  void Prepare();
  void Exchange_File();

  Folder_Record& Find_Folder(std::int64_t id);
  // Deletes items of removed folders for about this long.
  void Clear_Away(std::chrono::milliseconds time);
  // Reads the folders again after a failure or rollback.
  void Refresh();
  void Item_Left(Item_Place place);

  void Check_Writable() const;
  void Check_Changeable() const;
  void Begin_Change();
  void After_Failure();
  void Commit_Group();
  void Undo();
  void Tell_Group_Ended(bool kept);
  // Runs one change. Its work must be a single statement or use In_Savepoint.
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
  // Runs several statements so that all take effect or none.
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
  void Insert_Content(std::int64_t id, const New_Item& item);
  std::string Unpacked(std::string_view packed, std::size_t bytes);

  [[noreturn]] void Fail(std::int32_t number, const std::string& text) const;
  [[noreturn]] void Fail_Item_Gone() const;

  std::filesystem::path path_;
  Store_Mode mode_;
  std::unique_ptr<Database> owned_;         // when writing
  std::unique_ptr<Log_Keeper> log_keeper_;  // when writing
  std::unique_ptr<Reader_File> reader_;     // when only reading
  Database* database_ = nullptr;
  std::unique_ptr<Statements> statements_;
  std::unique_ptr<Read_Ahead> read_ahead_;
  Packer packer_;

  std::string store_id_;
  Display_Callback display_;
  std::weak_ptr<Group_Watcher> watcher_;
  Folder_Tree folders_;
  bool known_ = false;  // folders_ agrees with the file
  // Assigned here because SQLite would assign the same numbers again after a rollback.
  std::int64_t next_folder_ = 1, next_item_ = 1;
  std::vector<std::int64_t> to_clear_;  // removed folders that may still hold items
  std::uint64_t age_ = 0;
  int pending_ = 0;  // changes in the open transaction
  bool writing_ = false, spoilt_ = false;
  bool clearing_ = true;  // off after a failure
  Embedded_Store face_{*this};
};

}  // namespace tidyfold::sqlite
