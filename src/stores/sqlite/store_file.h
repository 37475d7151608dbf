// Recognises, creates, opens and locks store files.
//
// A store has one writer or any number of readers. The writer's lock is SQLite's exclusive locking mode. The
// operating system releases it when the process ends in any way, and SQLite keeps it apart from locks of
// other connections in the same process; a lock file, or a lock of our own on the same file, would not have
// both properties. As nobody else can change the store, folders, counts and rows can be kept in memory
// without checking the file again.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "stores/sqlite/database.h"
#include "stores/sqlite/store_open_error.h"

namespace tidyfold::sqlite {

// Both throw Store_Open_Error.
std::unique_ptr<Database> Open_For_Writing(const std::filesystem::path& path);
// Creates a store with its tables, identity and top folder.
std::unique_ptr<Database> Create_File(const std::filesystem::path& path, const std::string& store_name,
                                      const std::string& store_id);

// Removes a store that could not be completed, with its log.
void Remove_File(const std::filesystem::path& path);

// A connection for reading only. If a writer crashed, reading its log makes SQLite create an index file
// beside the store; the destructor removes it.
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
  std::filesystem::path left_over_;  // that index file; empty if there is none
};

std::string Utf8(const std::filesystem::path& path);
[[noreturn]] void Fail_Open(Store_Open_Error::Reason reason, const std::filesystem::path& path,
                            const std::string& detail = {});

}  // namespace tidyfold::sqlite
