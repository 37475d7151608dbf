// The text of header fields: folded lines and encoded words (RFC 2047).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tidyfold {

// One line of UTF-8. Encoded words of one charset that stand beside each other are joined before they are
// converted. Raw 8-bit text is UTF-8 if it can be, and otherwise in the charset given.
std::string Header_Text(std::string_view value, std::string_view raw_charset = {});

// Of the encoded word that the text begins with; 0 if there is none.
std::size_t Encoded_Word_Length(std::string_view text);

// The value in one line, without blanks around it.
std::string Unfolded(std::string_view value);
std::string_view Header_Trim(std::string_view value);

// Bytes that are written as a mark and two hexadecimal digits.
std::string Decode_Hex(std::string_view text, char mark);

}  // namespace tidyfold
