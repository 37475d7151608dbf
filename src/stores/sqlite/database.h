// A connection to an SQLite file and prepared statements on it. Failures are thrown as Automation_Error.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tidyfold::sqlite {

// Automation_Error::Source of all errors from here.
inline constexpr const char* error_source = "Tidyfold store";

// Whether an errno or a Windows error code says that there is no room left. SQLite itself says so only for a
// write; a quota, a limit on the size of files, and a disk that proves to be full later are plain I/O errors
// to it.
bool Means_Full(int system_error);

class Database {
 public:
  // Takes over the connection. `file` is the name in error texts.
  Database(sqlite3* connection, std::string file) : connection_(connection), file_(std::move(file)) {}

  sqlite3* Connection() const { return connection_.get(); }
  const std::string& File() const { return file_; }
  // SQLite rolls back by itself after some failures; this returns false then.
  bool In_Transaction() const { return sqlite3_get_autocommit(connection_.get()) == 0; }
  // True if the file was renamed or deleted, or its folder can no longer be reached.
  bool Has_Moved() const;
  // Rows that the last statement changed, without those that cascaded.
  int Changes() const { return sqlite3_changes(connection_.get()); }

  // Whether the last call of Fail was for a full disk.
  bool Ran_Full() const { return ran_full_; }

  // Runs statements and ignores their rows.
  void Execute(const char* sql);
  [[noreturn]] void Fail(int code) const;
  [[noreturn]] void Fail_Damaged(const std::string& what) const;
  [[noreturn]] void Fail_Moved() const;

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };
  std::unique_ptr<sqlite3, Closer> connection_;
  std::string file_;
  mutable bool ran_full_ = false;
};

// A prepared statement. As in SQLite, parameters count from 1 and columns from 0.
class Statement {
 public:
  Statement(Database& database, std::string_view sql);

  Statement& Bind(int parameter, std::int64_t value);
  Statement& Bind(int parameter, double value);
  // Does not copy: the bytes must stay valid until the statement is reset.
  Statement& Bind(int parameter, std::string_view text);
  Statement& Bind_Blob(int parameter, std::string_view bytes);
  Statement& Bind_Null(int parameter);
  // Whatever another statement's row holds.
  Statement& Bind_Column(int parameter, const Statement& row, int column);

  // True if there is a row. Resets the statement on failure.
  bool Step();
  void Reset() { sqlite3_reset(statement_.get()); }
  // Executes a statement that returns no rows, and resets it.
  void Run();

  bool Is_Null(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }
  std::int64_t Integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
  double Real(int column) const { return sqlite3_column_double(statement_.get(), column); }
  // Valid until the next step or reset. Also returns blobs, byte for byte.
  std::string_view Text(int column) const;

 private:
  void Check(int code);

  struct Finaliser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  Database& database_;
  std::unique_ptr<sqlite3_stmt, Finaliser> statement_;
};

// Resets a statement when it goes out of scope. A statement that is not reset keeps its read transaction
// open.
class Reading {
 public:
  explicit Reading(Statement& statement) : statement_(statement) {}
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;
  ~Reading() { statement_.Reset(); }
  bool Next() { return statement_.Step(); }

 private:
  Statement& statement_;
};

}  // namespace tidyfold::sqlite
