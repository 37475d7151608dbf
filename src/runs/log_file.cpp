#include "runs/log_file.h"

#include <new>
#include <system_error>

namespace tidyfold {

namespace {

// "Tdyr", in the header of the file.
constexpr std::int64_t application_id = 0x54647972;
constexpr std::int64_t schema_version = 1;

// Another process holds the file for milliseconds at a time.
constexpr int busy_milliseconds = 5000;

// An item's id is its run's number, shifted, plus its own: a run's items lie side by side without an index,
// and new ones are always the last. A result that is known only after its item was written stands in a table
// of its own, for all items from `first` to `last`: most of a group is done alike, and nothing that was
// written has to be read again.
constexpr const char* schema = R"sql(
PRAGMA journal_mode = WAL;
BEGIN;
CREATE TABLE run (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  kind INTEGER NOT NULL,
  undo_of INTEGER NOT NULL,
  began TEXT NOT NULL,
  ended TEXT NOT NULL DEFAULT '',
  options TEXT NOT NULL,
  items INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  folders INTEGER NOT NULL,
  exact INTEGER NOT NULL,
  processed INTEGER NOT NULL DEFAULT 0,
  not_all_deleted INTEGER NOT NULL DEFAULT 0,
  cancelled INTEGER NOT NULL DEFAULT 0,
  taken_back INTEGER NOT NULL DEFAULT 0,
  told INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE store (
  run INTEGER NOT NULL,
  store_id TEXT NOT NULL,
  name TEXT NOT NULL,
  place TEXT NOT NULL
);
CREATE TABLE folder (
  id INTEGER PRIMARY KEY,
  run INTEGER NOT NULL,
  store_id TEXT NOT NULL,
  entry_id TEXT NOT NULL,
  path TEXT NOT NULL,
  item_type INTEGER NOT NULL
);
CREATE TABLE item (
  id INTEGER PRIMARY KEY,
  folder INTEGER NOT NULL,
  entry_id TEXT NOT NULL,
  new_entry_id TEXT NOT NULL,
  subject TEXT NOT NULL,
  date REAL NOT NULL,
  class INTEGER NOT NULL,
  action INTEGER NOT NULL,
  result INTEGER NOT NULL,
  reason TEXT NOT NULL
);
CREATE TABLE result (
  first INTEGER PRIMARY KEY,
  last INTEGER NOT NULL,
  result INTEGER NOT NULL,
  new_entry_id TEXT NOT NULL,
  reason TEXT NOT NULL
);
CREATE VIEW item_with_result AS
  SELECT item.id, store_id, folder.entry_id AS folder_entry_id, path, item_type, item.entry_id, subject, date,
         class, action, coalesce(result.result, item.result) AS result,
         coalesce(result.new_entry_id, item.new_entry_id) AS new_entry_id,
         coalesce(result.reason, item.reason) AS reason
  FROM item JOIN folder ON folder.id = item.folder LEFT JOIN result ON result.last >= item.id AND result.first =
    (SELECT max(first) FROM result WHERE first <= item.id);
PRAGMA application_id = 0x54647972;
PRAGMA user_version = 1;
COMMIT;
)sql";

std::string Utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

void Make_Private(const std::filesystem::path& path, std::filesystem::perms permissions) {
  std::error_code ignored;  // a file system without permissions has none to give
  std::filesystem::permissions(path, permissions, ignored);
}

}  // namespace

void Fail_Log(const std::filesystem::path& file, const std::string& what) {
  throw Run_Log_Error("The log of runs \"" + Utf8(file) + "\" " + what);
}

Log_File::Log_File(const std::filesystem::path& path) : path_(path) {
  if (path.empty()) {
    throw Run_Log_Error(
        "There is no folder for the log of runs. Set HOME, or XDG_STATE_HOME, to an absolute path.");
  }
  std::error_code error;
  const std::filesystem::path folder = path.parent_path();
  if (std::filesystem::create_directories(folder, error))
    Make_Private(folder, std::filesystem::perms::owner_all);
  if (error) Fail_Log(path, "could not be made (" + error.message() + "). Make its folder writable.");
  const bool is_new = !std::filesystem::exists(path, error);
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(
      Utf8(path).c_str(), &connection,
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  connection_.reset(connection);
  if (connection == nullptr) throw std::bad_alloc();
  if (code != SQLITE_OK) Fail(code);
  if (is_new) {
    using std::filesystem::perms;
    Make_Private(path, perms::owner_read | perms::owner_write);
  }
  sqlite3_busy_timeout(connection, busy_milliseconds);
  Make_Or_Check_Schema();
  // A killed process loses nothing; a power cut may lose the last moments, never the file.
  Execute("PRAGMA synchronous = NORMAL");
  // In pages; moving them from SQLite's own log into the file waits for the disk.
  Execute("PRAGMA wal_autocheckpoint = 4000");
}

void Log_File::Make_Or_Check_Schema() {
  const auto number = [&](const char* sql) {
    Log_Statement statement(*this, sql);
    return statement.Step() ? statement.Integer(0) : 0;
  };
  const auto check = [&] {
    const std::int64_t version = number("PRAGMA user_version");
    if (version == 0 && number("SELECT COUNT(*) FROM sqlite_schema") == 0) return false;
    if (number("PRAGMA application_id") != application_id)
      Fail_Log(path_, "is another program's file. Move it away; a new log is begun then.");
    if (version > schema_version)
      Fail_Log(path_, "was written by a later version of Tidyfold. Use that one, or move the log away.");
    return true;
  };
  if (check()) return;
  // Another process may make it at the same time.
  const int code = sqlite3_exec(Connection(), schema, nullptr, nullptr, nullptr);
  if (code == SQLITE_OK) return;
  sqlite3_exec(Connection(), "ROLLBACK", nullptr, nullptr, nullptr);
  if (!check()) Fail(code);
}

void Log_File::Execute(const char* sql) {
  const int code = sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code);
}

void Log_File::Fail(int code) const {
  const std::string reason = std::string(" (") + sqlite3_errmsg(connection_.get()) + ")";
  switch (code & 0xFF) {
    case SQLITE_NOMEM:
      throw std::bad_alloc();
    case SQLITE_FULL:
      Fail_Log(path_, "could not be written: the disk is full. Make room on it.");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      Fail_Log(path_, "is damaged" + reason + ". Move it away; a new log is begun then.");
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_CANTOPEN:
      Fail_Log(path_,
               "could not be opened for writing" + reason + ". Make the file and its folder writable.");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      Fail_Log(path_, "is in use by another program" + reason + ". Try again when that has ended.");
    default:
      Fail_Log(path_, "could not be read or written" + reason + ". Check the disk that it lies on.");
  }
}

Log_Statement::Log_Statement(Log_File& file, std::string_view sql) : file_(file) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(file.Connection(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  statement_.reset(statement);
  Check(code);
}

bool Log_Statement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  Reset();
  file_.Fail(code);
}

std::string Log_Statement::Text(int column) const {
  const auto* text = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  const int bytes = sqlite3_column_bytes(statement_.get(), column);
  return text == nullptr ? std::string() : std::string(text, static_cast<std::size_t>(bytes));
}

}  // namespace tidyfold
