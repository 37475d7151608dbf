// Keeps the write-ahead log of a store small, and tells whether a log belongs to a file.
//
// SQLite replays whatever log lies beside a file, even if a crash left it there and the file has been
// replaced by a backup copy since; that destroys the copy. So each log bears a random number, store.log, and
// the number of the log before it, store.log_before: its first transaction is followed by one that changes
// both. When a log has been written back into the file, the file itself has its number, and the log that
// follows names it as the one before. A log whose numbers fit neither way is another file's. A file that
// cannot be read without its log is one that the log was being written back into when the disk was full or
// the process was killed: the log belongs to it.
#pragma once

#include <cstdint>
#include <random>

#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

// `without_log` is a connection that ignores the log. Throws as Database does if the file itself cannot be
// read for another reason than its content.
bool Log_Belongs(Database& with_log, Database& without_log);

class Log_Keeper {
 public:
  // The database must be a store of the current format, open for writing, and outlive this.
  explicit Log_Keeper(Database& database);
  Log_Keeper(const Log_Keeper&) = delete;
  Log_Keeper& operator=(const Log_Keeper&) = delete;
  ~Log_Keeper();

  // Writes the log back into the file, and empties it. Throws Automation_Error.
  void Empty_Log();

  // The numbers to come follow from the seed, so that files can be made alike.
  void Seed(std::uint64_t seed) { random_.seed(seed); }

 private:
  void Committed(int frames);

  Database& database_;
  Statement number_log_;
  std::mt19937_64 random_{std::random_device{}()};
  bool begins_ = false;  // the next transaction begins a log
};

}  // namespace tidyfold::sqlite
