// SQLite's way to the disk, with writing and reading that fail when a test wants them to.
#pragma once

#include <sqlite3.h>

#include <cerrno>
#include <map>

namespace tidyfold {

// Serves every file that is opened while it exists. One at a time.
class Fault_Vfs {
 public:
  Fault_Vfs() {
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

  // From the `number`-th writing on, counted from 1, all fail with this result of SQLite's and this errno.
  void Fail_Writing(int number, int result, int system_error) {
    writings_left_ = number - 1;
    result_ = result;
    error_ = system_error;
  }
  void Fail_Reading(int result, int system_error) {
    reading_fails_ = true;
    result_ = result;
    error_ = system_error;
  }
  void Repair() {
    writings_left_ = -1;
    reading_fails_ = false;
  }

 private:
  static int Fail() {
    errno = error_;
    return result_;
  }
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
    if (file->pMethods == nullptr) return result;
    Table& table = tables_[file->pMethods];
    table = {*file->pMethods, file->pMethods};
    table.own.xWrite = [](sqlite3_file* target, const void* bytes, int count, sqlite3_int64 at) {
      if (writings_left_ == 0) return Fail();
      if (writings_left_ > 0) --writings_left_;
      return Real(target).xWrite(target, bytes, count, at);
    };
    table.own.xRead = [](sqlite3_file* source, void* bytes, int count, sqlite3_int64 at) {
      return reading_fails_ ? Fail() : Real(source).xRead(source, bytes, count, at);
    };
    file->pMethods = &table.own;
    return result;
  }

  static inline sqlite3_vfs* real_ = nullptr;
  static inline sqlite3_vfs own_{};
  static inline std::map<const sqlite3_io_methods*, Table> tables_;
  static inline int writings_left_ = -1;  // none: nothing fails
  static inline bool reading_fails_ = false;
  static inline int result_ = SQLITE_OK, error_ = 0;
};

}  // namespace tidyfold
