// Text as users see it: UTF-8, where a character is a code point.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tidyfold {

// Upper case by Unicode's simple mapping: one character becomes exactly one. Bytes that are no UTF-8 stay.
std::string Upper_Case(std::string_view text);

// Blanks only (U+0020), as the platform's trimming does; tabs and line breaks stay.
constexpr std::string_view Trim_Right(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}
constexpr std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return Trim_Right(text);
}

// The first `count` characters; never cuts one in half.
std::string_view First_Characters(std::string_view text, std::size_t count);

// Whether the upper case of a text begins with that of another; no upper case is made for it.
bool Begins_Ignoring_Case(std::string_view text, std::string_view beginning);

// Below, equal to or above 0 as `left` stands before, with or after `right`; by upper case first, then by
// code point, so that the order is total.
int Compare_Ignoring_Case(std::string_view left, std::string_view right);

// The same text with every byte that is no UTF-8 replaced by U+FFFD.
std::string Valid_Utf8(std::string_view text);

}  // namespace tidyfold
