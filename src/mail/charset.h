// Converts bytes of any charset to UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tidyfold {

// Bytes with no charset, an unknown one or plain ASCII are read as UTF-8 if they are valid UTF-8, otherwise
// as Windows-1252. Bytes that are invalid in their charset become U+FFFD, NULs are dropped.
std::string To_Utf8(std::string_view bytes, std::string_view charset);

// The charset name of a Windows code page; empty for an unknown number.
std::string Code_Page_Charset(std::uint32_t code_page);

// For names and subjects: valid UTF-8 whose line breaks and other control characters are blanks.
std::string One_Line(std::string_view text);

}  // namespace tidyfold
