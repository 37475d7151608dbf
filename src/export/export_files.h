// New files and directories below one directory. Nothing is ever overwritten, and links are not followed.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

// Writes a new file with these bytes, which its owner alone may read, and gives it this date (seconds since
// 1970; 0: now). Throws Export_Error if it cannot be written whole; nothing of it is left then.
void Write_New_File(const std::filesystem::path& file, std::string_view bytes, std::int64_t date);

// A file that grows.
class Growing_File {
 public:
  // Throws Export_Error if there is anything of that name.
  explicit Growing_File(std::filesystem::path path);
  Growing_File(const Growing_File&) = delete;
  Growing_File& operator=(const Growing_File&) = delete;
  ~Growing_File();
  // Throws Export_Error. What was written before stays.
  void Append(std::string_view bytes);

 private:
  std::filesystem::path path_;
  int file_ = -1;
};

// Waits until the disk has all that was written below the directory. Throws Export_Error.
void Wait_For_Disk(const std::filesystem::path& directory);

// Which directory stands for which folder.
class Export_Tree {
 public:
  // Makes the directory where it is missing. Throws Export_Error where it cannot be made or is none.
  explicit Export_Tree(std::filesystem::path root);

  // A directory for the folder's items, made now, which holds nothing but perhaps directories that led to
  // other folders. The folders above it get theirs where they have none yet. Throws Export_Error.
  const std::filesystem::path& Add(const std::vector<std::string>& names);

 private:
  // What stands for a path of names, and the names that are taken in it, in upper case.
  struct Place {
    std::filesystem::path directory;
    std::set<std::string> taken;
  };

  Place& Place_Of(const std::vector<std::string>& names);
  Place& Make(const std::vector<std::string>& names, bool for_items);

  std::map<std::vector<std::string>, Place> places_;
};

}  // namespace tidyfold
