// A store file of the program: an information store in an SQLite database.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "outlook/mail_store.h"

namespace tidyfold {

namespace sqlite {
class Store;
}

struct Compacted {
  std::int64_t before = 0, after = 0;  // bytes of the file
  bool cancelled = false;
};

// Who opens it for writing excludes everybody else, who only reads excludes writers. Folder and item objects
// keep the file open and locked. Changes are grouped; a group is committed by Commit_Pending or, when it
// holds a hundred changes, before the next one. A crash loses uncommitted changes.
class Embedded_Store : public Mail_Store {
 public:
  // Throws Store_Open_Error. A store that an older version wrote is brought up to date when it is opened for
  // writing; that takes seconds for a large store, and progress is told.
  static std::shared_ptr<Embedded_Store> Open(const std::filesystem::path& path, Store_Mode mode,
                                              const Store_Progress& progress = {});
  // Creates a store with this name and the ten default folders, and opens it for writing. Never touches an
  // existing file. Throws Store_Open_Error.
  static std::shared_ptr<Embedded_Store> Create(const std::filesystem::path& path,
                                                const std::string& store_name);

  // A part of the inner store, which all objects hold on to.
  explicit Embedded_Store(sqlite::Store& store);
  Embedded_Store(const Embedded_Store&) = delete;
  Embedded_Store& operator=(const Embedded_Store&) = delete;
  ~Embedded_Store() override;

  const std::filesystem::path& Path() const;
  const Store_Address& Address() const override { return address_; }
  bool Is_At(const Store_Address& address) const override;
  Store_Mode Mode() const override;
  std::string StoreID() const override;
  void Set_StoreID(std::string store_id) override;
  MAPIFolder_Ptr Top_Folder() override;
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override;
  Item_Ptr GetItemFromID(const std::string& entry_id) override;

  // Additions outside of Begin and Commit join the current group. On a store that is open for reading only
  // they throw Automation_Error (no_access).
  Store_Writer& Writer();

  // As it was added. Throws Automation_Error (not_found).
  New_Item Read_Whole_Item(const std::string& entry_id) override;

  // A folder's protection is kept in the file; whoever clears out must ask for it. Throws Automation_Error
  // (not_found). Setting it is a change like any other.
  bool Keeps_Marks() const override { return true; }
  bool Is_Protected(const std::string& folder_entry_id) const override;
  void Set_Protected(const std::string& folder_entry_id, bool is_protected) override;

  void Set_Display(Display_Callback display) override;
  void Set_Watcher(std::weak_ptr<Group_Watcher> watcher) override;
  // Commits the current group, except between the writer's Begin and Commit. Throws Automation_Error if that
  // fails; the whole group is then undone.
  void Commit_Pending() override;

  // One line for each fault of the file. Reads the whole file, which takes seconds for a large store.
  std::vector<std::string> Check();

  // Bytes of the file that nothing uses; Compact gives them back.
  std::int64_t Unused_Bytes() const;
  // Gives back what the file does not need. Writes a compact copy that takes the file's place or, where there
  // is no room for one, works within the file. Whenever it is cancelled or killed, the store is whole. Throws
  // Automation_Error or Store_Open_Error; what was freed is freed.
  Compacted Compact(const Store_Progress& progress = {});

 private:
  sqlite::Store& store_;
  Store_Address address_;
  std::unique_ptr<Store_Writer> writer_;
};

}  // namespace tidyfold
