// What a reader of an HTML body sees, as plain text.
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// Takes and gives UTF-8. Markup goes, blocks and table rows become lines, character references characters.
std::string Html_To_Text(std::string_view html);

// The charset that an HTML page names in its head; empty where it names none.
std::string Html_Charset(std::string_view html);

}  // namespace tidyfold
