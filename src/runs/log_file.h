// The log's SQLite file and its prepared statements; failures become Run_Log_Error.
#pragma once

#include <sqlite3.h>

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "runs/run_log.h"

namespace tidyfold {

class Log_File {
 public:
  // Opens the file, making it and its folder where they are missing. Both are for the user alone.
  explicit Log_File(const std::filesystem::path& path);

  sqlite3* Connection() const { return connection_.get(); }
  void Execute(const char* sql);
  // Rows that the last statement changed.
  int Changes() const { return sqlite3_changes(connection_.get()); }
  std::int64_t Last_Insert() const { return sqlite3_last_insert_rowid(connection_.get()); }
  [[noreturn]] void Fail(int code) const;

  // Done all or not at all.
  template <class Work>
  void In_Transaction(Work&& work) {
    Execute("BEGIN IMMEDIATE");
    try {
      work();
      Execute("COMMIT");
    } catch (...) {
      sqlite3_exec(connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
      throw;
    }
  }

 private:
  void Make_Or_Check_Schema();

  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };
  std::filesystem::path path_;
  std::unique_ptr<sqlite3, Closer> connection_;
};

[[noreturn]] void Fail_Log(const std::filesystem::path& file, const std::string& what);

// Values are bound from 1 and columns counted from 0, as SQLite does.
class Log_Statement {
 public:
  Log_Statement(Log_File& file, std::string_view sql);

  // Binds the values in their order and runs the statement, which gives no row.
  template <class... Values>
  void Run(const Values&... values) {
    Bind(values...);
    Step();
    Reset();
  }
  template <class... Values>
  Log_Statement& Bind(const Values&... values) {
    Reset();
    int parameter = 0;
    (Bind_One(++parameter, values), ...);
    return *this;
  }
  // True when there is a row.
  bool Step();
  void Reset() { sqlite3_reset(statement_.get()); }

  std::int64_t Integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
  double Real(int column) const { return sqlite3_column_double(statement_.get(), column); }
  std::string Text(int column) const;

 private:
  void Bind_One(int parameter, std::integral auto value) {
    Check(sqlite3_bind_int64(statement_.get(), parameter, std::int64_t{value}));
  }
  void Bind_One(int parameter, double value) {
    Check(sqlite3_bind_double(statement_.get(), parameter, value));
  }
  // Without a copy: what is bound stays until the statement has run.
  void Bind_One(int parameter, const std::string& text) {
    Check(sqlite3_bind_text64(statement_.get(), parameter, text.data(), text.size(), SQLITE_STATIC,
                              SQLITE_UTF8));
  }
  void Check(int code) const {
    if (code != SQLITE_OK) file_.Fail(code);
  }

  struct Finaliser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  Log_File& file_;
  std::unique_ptr<sqlite3_stmt, Finaliser> statement_;
};

}  // namespace tidyfold
