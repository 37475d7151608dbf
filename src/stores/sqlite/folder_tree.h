// Keeps a store's folders in memory: they are few beside the items, and names and counts are needed all the
// time.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

struct Folder_Record {
  std::int64_t id = 0;
  Folder_Record* parent = nullptr;  // null for the top folder
  std::string name;
  std::int32_t item_type = 0;
  std::vector<Folder_Record*> children;  // by name, ignoring case, then by id
  std::int32_t item_count = 0;
  bool is_protected = false;       // must not be emptied or removed
  std::int64_t last_position = 0;  // the highest position used so far
};

class Folder_Tree {
 public:
  // Reads all folders again, except those that cannot be reached from the top folder. Throws Automation_Error
  // (corrupt_data) when there is no top folder or more than one. Returns the removed folders that have not
  // been deleted yet.
  std::vector<std::int64_t> Load(Database& database);

  // Null if there is none. Records keep their addresses until they are removed or Load is called.
  Folder_Record* Find(std::int64_t id);
  Folder_Record& Top() { return *top_; }
  // By its OlDefaultFolders number; null if there is none.
  Folder_Record* Default_Folder(std::int32_t type);
  // The same for Deleted Items, which every deletion needs.
  Folder_Record* Deleted_Items() { return deleted_items_; }

  Folder_Record& Add(std::int64_t id, Folder_Record& parent, const std::string& name, std::int32_t item_type);
  // The folder and all below it, parents first. Not recursive, as trees may be deep.
  static std::vector<Folder_Record*> With_All_Below(Folder_Record& folder);
  // Removes the folder and all below it.
  void Remove(Folder_Record& folder);

 private:
  void Count_Items(Database& database);

  std::unordered_map<std::int64_t, Folder_Record> folders_;
  Folder_Record* top_ = nullptr;
  Folder_Record* deleted_items_ = nullptr;
  Folder_Record* last_found_ = nullptr;  // loops ask for the same folder again and again
};

}  // namespace tidyfold::sqlite
