#include "stores/sqlite/log_keeper.h"

#include <optional>

#include "errors/automation_error.h"

namespace tidyfold::sqlite {

namespace {

// Frames of a page each; SQLite's own limit.
constexpr int most_frames = 1000;

struct Log_Numbers {
  std::int64_t log = 0, before = 0;
};

// Nothing for a format that has no such numbers.
std::optional<Log_Numbers> Numbers_Of(Database& database) {
  Statement version(database, "PRAGMA user_version");
  if (!version.Step() || version.Integer(0) < 2) return std::nullopt;
  Statement numbers(database, "SELECT log, log_before FROM store");
  if (!numbers.Step()) return std::nullopt;
  return Log_Numbers{numbers.Integer(0), numbers.Integer(1)};
}

}  // namespace

bool Log_Belongs(Database& with_log, Database& without_log) {
  std::optional<Log_Numbers> file;
  try {
    file = Numbers_Of(without_log);
  } catch (const Automation_Error& error) {
    if (error.Number() != automation_error::corrupt_data) throw;
  }
  if (!file) return true;
  try {
    const auto log = Numbers_Of(with_log);
    return log && (log->log == file->log || log->before == file->log);
  } catch (const Automation_Error& error) {
    // Pages of two files, mixed.
    if (error.Number() != automation_error::corrupt_data) throw;
    return false;
  }
}

Log_Keeper::Log_Keeper(Database& database)
    : database_(database), number_log_(database, "UPDATE store SET log_before = log, log = ?1") {
  int frames = 0, written_back = 0;
  sqlite3_wal_checkpoint_v2(database_.Connection(), nullptr, SQLITE_CHECKPOINT_PASSIVE, &frames,
                            &written_back);
  begins_ = frames == written_back;
  sqlite3_wal_hook(
      database_.Connection(),
      [](void* keeper, sqlite3*, const char*, int count) {
        static_cast<Log_Keeper*>(keeper)->Committed(count);
        return SQLITE_OK;
      },
      this);
}

Log_Keeper::~Log_Keeper() {
  sqlite3_wal_hook(database_.Connection(), nullptr, nullptr);
}

// What was committed stays committed whatever fails here.
void Log_Keeper::Committed(int frames) {
  if (begins_) {
    begins_ = false;
    try {
      number_log_.Bind(1, static_cast<std::int64_t>(random_())).Run();
    } catch (const Automation_Error&) {
      // The log can do without.
    }
    return;
  }
  if (frames < most_frames) return;
  int written_back = 0;
  const int code = sqlite3_wal_checkpoint_v2(database_.Connection(), nullptr, SQLITE_CHECKPOINT_PASSIVE,
                                             &frames, &written_back);
  begins_ = code == SQLITE_OK && frames == written_back;
}

void Log_Keeper::Empty_Log() {
  const int code = sqlite3_wal_checkpoint_v2(database_.Connection(), nullptr, SQLITE_CHECKPOINT_TRUNCATE,
                                             nullptr, nullptr);
  if (code != SQLITE_OK) database_.Fail(code);
  begins_ = true;
}

}  // namespace tidyfold::sqlite
