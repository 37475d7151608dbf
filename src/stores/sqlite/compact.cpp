#include "stores/sqlite/compact.h"

#include <algorithm>
#include <system_error>

#include "errors/automation_error.h"
#include "stores/sqlite/store_draft.h"
#include "stores/sqlite/store_file.h"

namespace tidyfold::sqlite {

namespace {

namespace fs = std::filesystem;

// Steps of SQLite's between two calls of the progress callback: some milliseconds.
constexpr int steps_per_progress = 20'000;
constexpr int pages_per_step = 256;

std::int64_t Pragma(Database& database, std::string_view name) {
  Statement pragma(database, "PRAGMA " + std::string(name));
  return pragma.Step() ? pragma.Integer(0) : 0;
}

// Calls `progress` from within SQLite's work as long as it lives.
class Watched_Work {
 public:
  Watched_Work(Database& database, fs::path draft, std::int64_t total, const Store_Progress& progress)
      : database_(database), draft_(std::move(draft)), total_(total), progress_(progress) {
    if (!progress) return;
    sqlite3_progress_handler(
        database.Connection(), steps_per_progress,
        [](void* work) { return static_cast<Watched_Work*>(work)->Tell() ? 0 : 1; }, this);
  }
  Watched_Work(const Watched_Work&) = delete;
  Watched_Work& operator=(const Watched_Work&) = delete;
  ~Watched_Work() { sqlite3_progress_handler(database_.Connection(), 0, nullptr, nullptr); }

 private:
  bool Tell() {
    std::error_code error;
    const auto size = fs::file_size(draft_, error);
    return progress_(error ? 0 : std::min(static_cast<std::int64_t>(size), total_), total_);
  }

  Database& database_;
  fs::path draft_;
  std::int64_t total_;
  const Store_Progress& progress_;
};

}  // namespace

std::int64_t Unused_Bytes(Database& database) {
  return Pragma(database, "freelist_count") * Pragma(database, "page_size");
}

bool Write_Compact_Draft(Database& database, const fs::path& path, const Store_Progress& progress,
                         bool& cancelled) {
  const fs::path draft = Draft_Of(path);
  const std::int64_t used =
      Pragma(database, "page_count") * Pragma(database, "page_size") - Unused_Bytes(database);
  std::error_code error;
  const fs::space_info room = fs::space(fs::absolute(path).parent_path(), error);
  constexpr std::int64_t reserve = std::int64_t{16} << 20;
  if (error || static_cast<std::int64_t>(room.available) < used + used / 10 + reserve) return false;
  Remove_File(draft);
  sqlite3_stmt* vacuum = nullptr;
  int code = sqlite3_prepare_v2(database.Connection(), "VACUUM INTO ?1", -1, &vacuum, nullptr);
  const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(vacuum, &sqlite3_finalize);
  const std::string name = Utf8(draft);
  if (code == SQLITE_OK) code = sqlite3_bind_text(vacuum, 1, name.c_str(), -1, SQLITE_STATIC);
  if (code == SQLITE_OK) {
    const Watched_Work watched(database, draft, used, progress);
    code = sqlite3_step(vacuum);
  }
  if (code == SQLITE_DONE) return true;
  Remove_File(draft);
  const int kind = code & 0xFF;
  cancelled = kind == SQLITE_INTERRUPT;
  if (kind == SQLITE_CORRUPT || kind == SQLITE_NOMEM) database.Fail(code);
  // Other programs fill the disk, too, and not every folder may be written.
  return false;
}

bool Compact_In_Place(Database& database, const Store_Progress& progress) {
  const std::int64_t total = Pragma(database, "freelist_count");
  const std::string step = "PRAGMA incremental_vacuum(" + std::to_string(pages_per_step) + ")";
  for (std::int64_t left = total; left > 0;) {
    database.Execute(step.c_str());
    const std::int64_t before = left;
    left = Pragma(database, "freelist_count");
    if (left >= before) break;
    if (progress && !progress(total - left, total)) return false;
  }
  return true;
}

}  // namespace tidyfold::sqlite
