#include "stores/sqlite/database.h"

#include <cerrno>
#include <new>
#include <system_error>

#include "errors/automation_error.h"

namespace tidyfold::sqlite {

bool Means_Full(int system_error) {
#ifdef EDQUOT
  if (system_error == EDQUOT) return true;
#endif
  // On Windows, the codes of errno and of the system differ.
  for (const std::error_category* category : {&std::generic_category(), &std::system_category()}) {
    const std::error_code error(system_error, *category);
    if (error == std::errc::no_space_on_device || error == std::errc::file_too_large) return true;
  }
  return false;
}

void Database::Execute(const char* sql) {
  const int code = sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code);
}

bool Database::Has_Moved() const {
  int moved = 0;
  sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

void Database::Fail(int code) const {
  const int system_error = errno;
  const int kind = code & 0xFF;
  const std::string store = "The store \"" + file_ + "\" ";
  const std::string reason = std::string(" (") + sqlite3_errmsg(connection_.get()) + ")";
  const auto fail = [](std::int32_t number, const std::string& text) {
    throw Automation_Error(number, text, error_source);
  };
  if (kind == SQLITE_NOMEM || code == SQLITE_IOERR_NOMEM) throw std::bad_alloc();
  ran_full_ = kind == SQLITE_FULL || (kind == SQLITE_IOERR && Means_Full(system_error));
  if (ran_full_) {
    fail(automation_error::call_failed, store +
                                            "could not be written: the disk is full. Make room on it and "
                                            "try again; the last changes were not kept.");
  }
  switch (kind) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      fail(automation_error::corrupt_data,
           store + "is damaged" + reason + ". Restore it from a backup copy.");
      break;
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
      if (Has_Moved()) Fail_Moved();
      fail(automation_error::unavailable,
           store + "can no longer be read or written" + reason +
               ". Check the disk or the network share that it lies on, and open the store again; the last "
               "changes may not have been kept.");
      break;
    case SQLITE_READONLY:
      if (code == SQLITE_READONLY_DBMOVED) Fail_Moved();
      [[fallthrough]];
    case SQLITE_PERM:
    case SQLITE_AUTH:
      fail(automation_error::no_access,
           store + "may not be written" + reason + ". Make the file and its folder writable.");
      break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      fail(automation_error::busy, store + "is in use by another program" + reason + ". Close it there.");
      break;
    default:
      break;
  }
  throw Automation_Error(automation_error::call_failed,
                         store + "could not do what it was asked" + reason + ".", error_source);
}

void Database::Fail_Moved() const {
  throw Automation_Error(
      automation_error::unavailable,
      "The store \"" + file_ +
          "\" is no longer where it was. Check the disk or the network share that it lies on, put the file "
          "back if it was moved, and open the store again; the last changes were not kept.",
      error_source);
}

void Database::Fail_Damaged(const std::string& what) const {
  throw Automation_Error(
      automation_error::corrupt_data,
      "The store \"" + file_ + "\" is damaged (" + what + "). Restore it from a backup copy.", error_source);
}

Statement::Statement(Database& database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(database.Connection(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  // All statements are known to be correct, so the tables are not.
  if (code == SQLITE_ERROR) database.Fail_Damaged(sqlite3_errmsg(database.Connection()));
  Check(code);
  statement_.reset(statement);
}

Statement& Statement::Bind(int parameter, std::int64_t value) {
  Check(sqlite3_bind_int64(statement_.get(), parameter, value));
  return *this;
}

Statement& Statement::Bind(int parameter, double value) {
  Check(sqlite3_bind_double(statement_.get(), parameter, value));
  return *this;
}

Statement& Statement::Bind(int parameter, std::string_view text) {
  // A null pointer would bind NULL.
  Check(sqlite3_bind_text64(statement_.get(), parameter, text.empty() ? "" : text.data(), text.size(),
                            SQLITE_STATIC, SQLITE_UTF8));
  return *this;
}

Statement& Statement::Bind_Blob(int parameter, std::string_view bytes) {
  Check(sqlite3_bind_blob64(statement_.get(), parameter, bytes.empty() ? "" : bytes.data(), bytes.size(),
                            SQLITE_STATIC));
  return *this;
}

Statement& Statement::Bind_Null(int parameter) {
  Check(sqlite3_bind_null(statement_.get(), parameter));
  return *this;
}

Statement& Statement::Bind_Column(int parameter, const Statement& row, int column) {
  Check(sqlite3_bind_value(statement_.get(), parameter, sqlite3_column_value(row.statement_.get(), column)));
  return *this;
}

bool Statement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  Reset();
  database_.Fail(code);
}

void Statement::Run() {
  Step();
  Reset();
}

std::string_view Statement::Text(int column) const {
  const auto* text = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  const int bytes = sqlite3_column_bytes(statement_.get(), column);
  if (text == nullptr || bytes <= 0) return {};
  return {text, static_cast<std::size_t>(bytes)};
}

void Statement::Check(int code) {
  if (code != SQLITE_OK) database_.Fail(code);
}

}  // namespace tidyfold::sqlite
