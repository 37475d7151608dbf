// Folders and items as text, JSON and comma-separated values.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "cli/arguments.h"
#include "cli/session.h"

namespace tidyfold::cli {

// Always valid UTF-8.
std::string To_Json(const nlohmann::ordered_json& value);

// The message boxes that were shown, as documents list them.
nlohmann::ordered_json Messages_Json(const Terminal_Message_Box& messages);

// "yyyy-mm-dd" as the grid shows it; empty if the item has no date.
std::string Date_Text(const ItemData& item);

// A text on one line and exactly as wide as its column.
std::string Cell(std::string_view text, std::size_t width);

// "1 item", "2 items".
std::string Counted(std::int64_t count, const std::string& word);

void List_Folders(Session& session, Terminal& terminal, Form form);

// Writes items one by one: a copy of all of them may not fit into memory.
class Item_Listing {
 public:
  Item_Listing(Session& session, Terminal& terminal, Form form)
      : session_(session), terminal_(terminal), form_(form) {}

  // The items that a plan takes, by folder. Returns their number.
  std::int64_t Write(const Clean_Plan& plan);

 private:
  void Begin();
  void Write_Item(const Store_Folder& folder, const ItemData& item);
  void End();

  Session& session_;
  Terminal& terminal_;
  Form form_;
  std::int64_t count_ = 0;
};

}  // namespace tidyfold::cli
