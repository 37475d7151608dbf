// Store files: recognised, made, opened and locked.
//
// A store has one writer or any number of readers. The writer's lock is SQLite's own exclusive locking mode:
// the operating system takes it away with the process, however that ends, and SQLite keeps it apart from the
// locks of other connections in the same process, which a lock file or a lock of our own on the same file
// would not. It also means that nobody changes a store behind the program's back: folders, counts and rows
// read ahead can be kept in memory and stay right without asking the file again.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "stores/sqlite/database.h"
#include "stores/sqlite/store_open_error.h"

namespace tidyfold::sqlite {

// Both throw Store_Open_Error.
std::unique_ptr<Database> Open_For_Writing(const std::filesystem::path& path);
// Makes an empty store: tables, identity, top folder.
std::unique_ptr<Database> Create_File(const std::filesystem::path& path, const std::string& store_name,
                                      const std::string& store_id);

// A store that could not be finished, with what lies beside it.
void Remove_File(const std::filesystem::path& path);

// A connection that changes nothing. Where a writer crashed, its log must be read through a file that SQLite
// puts beside the store; it is removed with this object.
class Reader_File {
 public:
  explicit Reader_File(const std::filesystem::path& path);
  Reader_File(const Reader_File&) = delete;
  Reader_File& operator=(const Reader_File&) = delete;
  ~Reader_File();
  Database& Connection() { return *database_; }

 private:
  void Connect_For_Reading(const std::filesystem::path& path, const std::string& name, int flags);
  void Read_With_Log(const std::filesystem::path& path);
  void Clean_Up();

  std::unique_ptr<Database> database_;
  std::filesystem::path left_over_;  // empty: none
};

std::string Utf8(const std::filesystem::path& path);
[[noreturn]] void Fail_Open(Store_Open_Error::Reason reason, const std::filesystem::path& path,
                            const std::string& detail = {});

}  // namespace tidyfold::sqlite
