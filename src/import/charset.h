// Bytes of any charset as UTF-8 text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tidyfold {

// Mail that names no charset, a wrong one or plain ASCII mostly holds UTF-8, and where it does not,
// Windows-1252: so that is how such bytes are read. Bytes that mean nothing in their charset become U+FFFD,
// NULs are dropped.
std::string To_Utf8(std::string_view bytes, std::string_view charset);

// The name of a Windows code page; empty for numbers that stand for none.
std::string Code_Page_Charset(std::uint32_t code_page);

// For names and subjects: valid UTF-8 whose line breaks and other control characters are blanks.
std::string One_Line(std::string_view text);

}  // namespace tidyfold
