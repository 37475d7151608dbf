// A log in a folder of its own.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

#include "doubles/temporary_directory.h"
#include "runs/run_log.h"

namespace tidyfold {

inline Logged_Item Noted(const std::string& entry_id, Item_Action action = Item_Action::Moved) {
  Logged_Item item;
  item.folder = {"S1", "F7", "Inbox/Lists", item_type::mail};
  item.entry_id = entry_id;
  item.subject = "Subject of " + entry_id;
  item.date = 40000;
  item.item_class = item_class::mail;
  item.action = action;
  return item;
}

class Log_Fixture : public testing::Test {
 protected:
  static std::vector<Logged_Item> Items(Run_Log& log, std::int64_t run) {
    std::vector<Logged_Item> items;
    log.Items(run, [&](const Logged_Item& item) { items.push_back(item); });
    return items;
  }
  // The first number that a query gives; what the log itself does not tell.
  std::int64_t Number(const char* sql) const {
    sqlite3* connection = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open(file.string().c_str(), &connection);
    EXPECT_EQ(sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr), SQLITE_OK) << sql;
    const std::int64_t number =
        sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : -1;
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    return number;
  }

  static constexpr Date now = 45000 + 45296.0 / 86400;  // 2023-03-15 12:34:56
  const Temporary_Directory folder;
  const std::filesystem::path file = folder / "state" / "runs.sqlite";
};

}  // namespace tidyfold
