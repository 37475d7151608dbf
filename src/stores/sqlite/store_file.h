// Recognises, opens and locks store files.
//
// A store has one writer or any number of readers. The writer's lock is SQLite's exclusive locking mode. The
// operating system releases it when the process ends in any way, and SQLite keeps it apart from locks of
// other connections in the same process; a lock file, or a lock of our own on the same file, would not have
// both properties. As nobody else can change the store, folders, counts and rows can be kept in memory
// without checking the file again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "outlook/store_open_error.h"
#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

struct Opened_File {
  std::unique_ptr<Database> database;
  std::int64_t version = 0;  // of the format; at most schema_version
};

// Throws Store_Open_Error. A log that belongs to another file is set aside first.
Opened_File Open_For_Writing(const std::filesystem::path& path);
// The file with this ending that belongs to a store. It lies where SQLite puts it: beside the file that a
// link leads to.
std::filesystem::path Beside(const std::filesystem::path& path, const std::string& ending);

// A bare connection; `name` is a path or a URI, `flags` are SQLite's.
sqlite3* Connect(const std::filesystem::path& path, const std::string& name, int flags);

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
  void Read_With_Log(const std::filesystem::path& path);
  void Clean_Up();

  std::unique_ptr<Database> database_;
  std::filesystem::path left_over_;  // that index file; empty if there is none
};

std::string Utf8(const std::filesystem::path& path);
[[noreturn]] void Fail_Open(Store_Open_Error::Reason reason, const std::filesystem::path& path,
                            const std::string& detail = {});

}  // namespace tidyfold::sqlite
