// A log in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runs/run_log.h"
#include "stores/sqlite/temporary_store.h"

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
  static constexpr Date now = 45000 + 45296.0 / 86400;  // 2023-03-15 12:34:56
  const Temporary_Directory folder;
  const std::filesystem::path file = folder / "state" / "runs.sqlite";
};

}  // namespace tidyfold
