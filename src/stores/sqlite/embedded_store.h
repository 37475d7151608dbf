// A store file of the program: an information store in an SQLite database.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "outlook/object_model.h"
#include "outlook/store_writer.h"
#include "stores/sqlite/store_open_error.h"

namespace tidyfold {

namespace sqlite {
class Store;
}

enum class Store_Mode {
  Read_Write,  // excludes everybody else
  Read_Only,   // leaves the file and its folder unchanged; excludes only writers
};

// Folder and item objects keep the file open and locked. Changes are grouped; a group is committed by
// Commit_Pending or, when it holds a hundred changes, before the next one. A crash loses uncommitted changes.
// All calls must come from one thread.
class Embedded_Store {
 public:
  // Throws Store_Open_Error.
  static std::shared_ptr<Embedded_Store> Open(const std::filesystem::path& path, Store_Mode mode);
  // Creates a store with this name and the ten default folders, and opens it for writing. Never touches an
  // existing file. Throws Store_Open_Error.
  static std::shared_ptr<Embedded_Store> Create(const std::filesystem::path& path,
                                                const std::string& store_name);

  explicit Embedded_Store(std::shared_ptr<sqlite::Store> store);
  Embedded_Store(const Embedded_Store&) = delete;
  Embedded_Store& operator=(const Embedded_Store&) = delete;
  ~Embedded_Store();

  const std::filesystem::path& Path() const;
  Store_Mode Mode() const;
  std::string StoreID() const;
  MAPIFolder_Ptr Top_Folder();

  // Additions outside of Begin and Commit join the current group. On a store that is open for reading only
  // they throw Automation_Error (no_access).
  Store_Writer& Writer();

  // All of an item, as it was added. Throws Automation_Error (not_found).
  New_Item Read_Whole_Item(const std::string& entry_id);

  // A folder's protection is kept in the file; whoever clears out must ask for it. By EntryID; throws
  // Automation_Error (not_found). Setting it is a change like any other.
  bool Is_Protected(const std::string& folder_entry_id) const;
  void Set_Protected(const std::string& folder_entry_id, bool is_protected);

  // Commits the current group, except between the writer's Begin and Commit. Throws Automation_Error if that
  // fails; the whole group is then undone.
  void Commit_Pending();

  // One line for each fault of the file. Reads the whole file, which takes seconds for a large store.
  std::vector<std::string> Check();

  // For Embedded_Outlook.
  const std::shared_ptr<sqlite::Store>& Inner() const { return store_; }

 private:
  std::shared_ptr<sqlite::Store> store_;
  std::unique_ptr<Store_Writer> writer_;
};

}  // namespace tidyfold
