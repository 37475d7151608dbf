// Store files for one test, and what tests do to them behind the program's back.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "errors/automation_error.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

class Temporary_Directory {
 public:
  Temporary_Directory();
  Temporary_Directory(const Temporary_Directory&) = delete;
  Temporary_Directory& operator=(const Temporary_Directory&) = delete;
  ~Temporary_Directory() { std::filesystem::remove_all(path_); }
  std::filesystem::path operator/(const char* name) const { return path_ / name; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Every file of a directory, name and bytes.
std::map<std::string, std::string> All_Files(const std::filesystem::path& directory);
std::string Bytes_Of(const std::filesystem::path& file);
void Write_Bytes(const std::filesystem::path& file, const std::string& bytes);

// By a connection of another program's.
int Run_Sql(const std::filesystem::path& file, const std::string& sql);

std::int64_t Number_By_Sql(const std::filesystem::path& file, const std::string& sql);

// Another process that has done some work and then does nothing more until it is killed: nothing of it is
// closed or tidied up.
class Other_Process {
 public:
  // Returns when `work` has ended.
  explicit Other_Process(const std::function<int()>& work);
  Other_Process(const Other_Process&) = delete;
  Other_Process& operator=(const Other_Process&) = delete;
  ~Other_Process() { Kill(); }
  // What `work` returned; 255 after an exception.
  int Result() const { return result_; }
  void Kill();

 private:
  int process_ = -1;
  int result_ = -1;
};

inline int In_Killed_Process(const std::function<int()>& work) {
  return Other_Process(work).Result();
}

MAPIFolder_Ptr Folder_Named(Embedded_Store& store, const std::string& name);
// Adds `count` items with the subjects "1" and so on.
void Add_Numbered(Embedded_Store& store, const std::string& folder, int count);
// Every subject, parted by blanks.
std::string Subjects_Of(Embedded_Store& store, const std::string& folder);

// A store with three items in its Inbox, closed.
void Make_Small_Store(const std::filesystem::path& path);

}  // namespace tidyfold
