// A connection to one SQLite file and its prepared statements; failures become Automation_Error.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tidyfold::sqlite {

// What Automation_Error::Source says.
inline constexpr const char* error_source = "Tidyfold store";

class Database {
 public:
  // Takes over a connection; `file` is the name that error texts give.
  Database(sqlite3* connection, std::string file) : connection_(connection), file_(std::move(file)) {}

  sqlite3* Connection() const { return connection_.get(); }
  const std::string& File() const { return file_; }
  // SQLite ends a transaction by itself after some failures; this tells.
  bool In_Transaction() const { return sqlite3_get_autocommit(connection_.get()) == 0; }
  // The file was renamed or deleted, or the place where it lies cannot be reached.
  bool Has_Moved() const;
  // Rows that the last statement changed itself, without those that went along with them.
  int Changes() const { return sqlite3_changes(connection_.get()); }

  // Runs statements that give no rows, or whose rows do not matter.
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
};

// A prepared statement. Values are bound from 1, columns counted from 0, as SQLite does.
class Statement {
 public:
  Statement(Database& database, std::string_view sql);

  Statement& Bind(int parameter, std::int64_t value);
  Statement& Bind(int parameter, double value);
  // Bound without a copy: the bytes must stay until the statement is reset.
  Statement& Bind(int parameter, std::string_view text);
  Statement& Bind_Blob(int parameter, std::string_view bytes);
  Statement& Bind_Null(int parameter);

  // True when there is a row. A failure resets the statement.
  bool Step();
  void Reset() { sqlite3_reset(statement_.get()); }
  // Steps once, expecting no row, and resets.
  void Run();

  bool Is_Null(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }
  std::int64_t Integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
  double Real(int column) const { return sqlite3_column_double(statement_.get(), column); }
  // Valid until the next step or reset. Blobs read as text, byte for byte.
  std::string_view Text(int column) const;

 private:
  void Check(int code);

  struct Finaliser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  Database& database_;
  std::unique_ptr<sqlite3_stmt, Finaliser> statement_;
};

// Resets a statement that gives rows when its use ends, however it ends: one that stays open holds on to its
// snapshot of the file.
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
