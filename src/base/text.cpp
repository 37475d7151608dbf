#include "base/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>

namespace tidyfold {

namespace {

struct Decoded {
  std::int32_t character;  // negative: not UTF-8
  std::size_t length;      // bytes, at least 1
};

Decoded Decode(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x80) return {byte, 1};
  utf8proc_int32_t character = -1;
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + at,
                                       static_cast<utf8proc_ssize_t>(text.size() - at), &character);
  if (length <= 0) return {-1, 1};
  return {character, static_cast<std::size_t>(length)};
}

std::int32_t Upper(std::int32_t character) {
  if (character < 0x80) return character >= 'a' && character <= 'z' ? character - 32 : character;
  return utf8proc_toupper(character);
}

}  // namespace

std::string Upper_Case(std::string_view text) {
  std::string upper;
  upper.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const auto [character, length] = Decode(text, at);
    if (character < 0) {
      upper += text[at];
    } else if (character < 0x80) {
      upper += static_cast<char>(Upper(character));
    } else {
      utf8proc_uint8_t bytes[4];
      const auto count = utf8proc_encode_char(Upper(character), bytes);
      upper.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
    }
    at += length;
  }
  return upper;
}

std::string_view First_Characters(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  while (count > 0 && at < text.size()) {
    at += Decode(text, at).length;
    --count;
  }
  return text.substr(0, at);
}

bool Begins_Ignoring_Case(std::string_view text, std::string_view beginning) {
  std::size_t i = 0, j = 0;
  while (j < beginning.size()) {
    if (i >= text.size()) return false;
    const auto a = Decode(text, i), b = Decode(beginning, j);
    if (Upper(a.character) != Upper(b.character) || (a.character < 0 && text[i] != beginning[j]))
      return false;
    i += a.length;
    j += b.length;
  }
  return true;
}

int Compare_Ignoring_Case(std::string_view left, std::string_view right) {
  std::size_t i = 0, j = 0;
  while (i < left.size() && j < right.size()) {
    const auto a = Decode(left, i), b = Decode(right, j);
    const auto upper_a = Upper(a.character), upper_b = Upper(b.character);
    if (upper_a != upper_b) return upper_a < upper_b ? -1 : 1;
    i += a.length;
    j += b.length;
  }
  if (i < left.size()) return 1;
  if (j < right.size()) return -1;
  return left.compare(right);
}

std::string Valid_Utf8(std::string_view text) {
  // Most is plain ASCII.
  if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; }))
    return std::string(text);
  std::string valid;
  valid.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const auto [character, length] = Decode(text, at);
    if (character < 0) {
      valid += "\xEF\xBF\xBD";
    } else {
      valid.append(text.substr(at, length));
    }
    at += length;
  }
  return valid;
}

}  // namespace tidyfold
