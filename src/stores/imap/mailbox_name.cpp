#include "stores/imap/mailbox_name.h"

#include <cstdint>
#include <optional>

#include "base/text.h"

namespace tidyfold::imap {

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,";

void Append_Utf8(std::string& text, std::uint32_t c) {
  const auto byte = [&](std::uint32_t value) { text += static_cast<char>(value); };
  if (c < 0x80) {
    byte(c);
  } else if (c < 0x800) {
    byte(0xC0 | c >> 6);
    byte(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    byte(0xE0 | c >> 12);
    byte(0x80 | (c >> 6 & 0x3F));
    byte(0x80 | (c & 0x3F));
  } else {
    byte(0xF0 | c >> 18);
    byte(0x80 | (c >> 12 & 0x3F));
    byte(0x80 | (c >> 6 & 0x3F));
    byte(0x80 | (c & 0x3F));
  }
}

// Between "&" and "-": UTF-16 in base64. Nothing for what is none.
std::optional<std::string> Decode_Shifted(std::string_view shifted) {
  std::string text;
  std::uint32_t bits = 0, high = 0;
  int count = 0;
  for (const char c : shifted) {
    const std::size_t digit = digits.find(c);
    if (digit == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 16) continue;
    count -= 16;
    const std::uint32_t unit = bits >> count & 0xFFFF;
    bits &= (1U << count) - 1;
    if (unit >= 0xDC00 && unit < 0xE000) {
      if (high == 0) return std::nullopt;
      Append_Utf8(text, 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00));
      high = 0;
    } else if (high != 0 || unit == 0) {
      return std::nullopt;
    } else if (unit >= 0xD800 && unit < 0xDC00) {
      high = unit;
    } else {
      Append_Utf8(text, unit);
    }
  }
  if (high != 0 || bits != 0 || count >= 6) return std::nullopt;
  return text;
}

}  // namespace

std::string Decode_Mailbox_Name(std::string_view name) {
  std::string text;
  for (std::size_t at = 0; at < name.size(); ++at) {
    if (name[at] != '&') {
      text += name[at];
      continue;
    }
    const std::size_t end = name.find('-', at);
    if (end == std::string_view::npos) return Valid_Utf8(name);
    if (end == at + 1) {
      text += '&';
    } else if (const auto decoded = Decode_Shifted(name.substr(at + 1, end - at - 1))) {
      text += *decoded;
    } else {
      return Valid_Utf8(name);
    }
    at = end;
  }
  return Valid_Utf8(text);
}

std::string Encode_Mailbox_Name(std::string_view utf8) {
  const std::string valid = Valid_Utf8(utf8);
  std::string text;
  std::uint32_t bits = 0;
  int count = 0;
  bool shifted = false;
  const auto put = [&](std::uint32_t unit) {
    bits = bits << 16 | unit;
    for (count += 16; count >= 6; count -= 6) text += digits[bits >> (count - 6) & 0x3F];
    bits &= (1U << count) - 1;
  };
  const auto unshift = [&] {
    if (!shifted) return;
    if (count > 0) text += digits[bits << (6 - count) & 0x3F];
    text += '-';
    bits = 0;
    count = 0;
    shifted = false;
  };
  for (std::size_t at = 0; at < valid.size();) {
    const auto lead = static_cast<unsigned char>(valid[at]);
    if (lead >= 0x20 && lead < 0x7F) {
      unshift();
      text += valid[at++];
      if (lead == '&') text += '-';
      continue;
    }
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    std::uint32_t c = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) c = c << 6 | (static_cast<unsigned char>(valid[at + i]) & 0x3F);
    at += length;
    if (!shifted) text += '&';
    shifted = true;
    if (c >= 0x10000) {
      put(0xD800 + ((c - 0x10000) >> 10));
      put(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      put(c);
    }
  }
  unshift();
  return text;
}

}  // namespace tidyfold::imap
