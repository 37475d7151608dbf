// SQLite's way to the disk, with writing and reading that fail, or kill the process, when a test wants them
// to.
#pragma once

#include <sqlite3.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

namespace tidyfold {

struct Planned_Failure {
  static constexpr int killed = -1;  // as a result
  int left = -1;                     // calls that still succeed; never fails when negative
  int result = SQLITE_OK, system_error = 0;

  bool Comes() {
    if (left == 0) {
      if (result == killed) std::_Exit(1);
      errno = system_error;
      return true;
    }
    if (left > 0) --left;
    return false;
  }
};

// Serves every file that is opened while it exists. One at a time.
class Fault_Vfs {
 public:
  // Only files whose names end so fail.
  explicit Fault_Vfs(std::string ending = {}) {
    ending_ = std::move(ending);
    real_ = sqlite3_vfs_find(nullptr);
    own_ = *real_;
    own_.zName = "faulty";
    own_.xOpen = &Open;
    sqlite3_vfs_register(&own_, 1);
    Repair();
  }
  Fault_Vfs(const Fault_Vfs&) = delete;
  Fault_Vfs& operator=(const Fault_Vfs&) = delete;
  ~Fault_Vfs() {
    Repair();
    sqlite3_vfs_unregister(&own_);
  }

  // From the `number`-th call on, counted from 1, all fail with this result of SQLite's and this errno.
  void Fail_Writing(int number, int result, int system_error) {
    writing_ = {number - 1, result, system_error};
  }
  void Kill_At_Writing(int number) { writing_ = {number - 1, Planned_Failure::killed, 0}; }
  void Fail_Reading(int number, int result, int system_error) {
    reading_ = {number - 1, result, system_error};
  }
  // From now on writing fails that makes a file longer, as on a full disk.
  void Fail_Growing() { full_ = true; }
  void Repair() {
    writing_ = reading_ = {};
    full_ = false;
  }

 private:
  // The file is the real one; only its table of functions is exchanged.
  struct Table {
    sqlite3_io_methods own;
    const sqlite3_io_methods* real;
  };
  static const sqlite3_io_methods& Real(sqlite3_file* file) {
    return *reinterpret_cast<const Table*>(file->pMethods)->real;
  }
  static int Open(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* out) {
    const int result = real_->xOpen(real_, name, file, flags, out);
    if (file->pMethods == nullptr || name == nullptr || !std::string_view(name).ends_with(ending_))
      return result;
    Table& table = tables_[file->pMethods];
    table = {*file->pMethods, file->pMethods};
    table.own.xWrite = [](sqlite3_file* target, const void* bytes, int count, sqlite3_int64 at) {
      sqlite3_int64 size = 0;
      if (full_ && Real(target).xFileSize(target, &size) == SQLITE_OK && at + count > size)
        return SQLITE_FULL;
      return writing_.Comes() ? writing_.result : Real(target).xWrite(target, bytes, count, at);
    };
    table.own.xRead = [](sqlite3_file* source, void* bytes, int count, sqlite3_int64 at) {
      return reading_.Comes() ? reading_.result : Real(source).xRead(source, bytes, count, at);
    };
    file->pMethods = &table.own;
    return result;
  }

  static inline sqlite3_vfs* real_ = nullptr;
  static inline sqlite3_vfs own_{};
  static inline std::map<const sqlite3_io_methods*, Table> tables_;
  static inline Planned_Failure writing_, reading_;
  static inline std::string ending_;
  static inline bool full_ = false;
};

}  // namespace tidyfold
