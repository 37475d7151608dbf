// The visible text of an HTML body.
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// UTF-8 in and out. Markup is removed, blocks and table rows become lines, character references are decoded.
std::string Html_To_Text(std::string_view html);

// The charset declared in the head of an HTML page; empty if there is none.
std::string Html_Charset(std::string_view html);

}  // namespace tidyfold
