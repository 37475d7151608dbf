// Copies of items outside of their stores, kept before a run deletes them for good.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

// What is to be copied of a folder.
struct Folder_To_Copy {
  std::vector<std::string> names;  // where the copy lies below its directory; at least one
  MAPIFolder_Ptr folder;
  bool whole = false;                  // every item of the folder
  std::vector<std::string> entry_ids;  // otherwise
};

struct Kept_Copy {
  std::string place;       // the directory that was made for it
  std::int64_t items = 0;  // that were written, read back and found to be the same
  std::string failure;     // why there is no whole copy; empty if there is one
  bool cancelled = false;
};

class Item_Copies {
 public:
  virtual ~Item_Copies() = default;
  // Writes the items below `directory`, reads them back and compares; when it returns without failure, the
  // disk has them. `go_on` is told the number of items done and returns false to cancel; other handlers may
  // run in it.
  virtual Kept_Copy Keep(const std::vector<Folder_To_Copy>& folders, const std::string& directory,
                         const std::function<bool(std::int64_t done, std::int64_t total)>& go_on) = 0;
};

}  // namespace tidyfold
