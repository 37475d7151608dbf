#include "mail/transfer_encoding.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>
#include <utility>

#include "mail/mail_headers.h"

namespace tidyfold {
namespace {

constexpr std::uint8_t no_digit = 0xFF;
constexpr std::uint8_t padding = 0xFE;

constexpr std::array<std::uint8_t, 256> base64_values = [] {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<std::uint8_t, 256> values{};
  values.fill(no_digit);
  for (std::size_t i = 0; i < digits.size(); ++i)
    values[static_cast<unsigned char>(digits[i])] = static_cast<std::uint8_t>(i);
  values['='] = padding;
  return values;
}();

std::string Decode_Quoted_Printable(std::string_view text) {
  GMimeEncoding state;
  g_mime_encoding_init_decode(&state, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
  std::string bytes(g_mime_encoding_outlen(&state, text.size()), '\0');
  std::size_t size = g_mime_encoding_step(&state, text.data(), text.size(), bytes.data());
  size += g_mime_encoding_flush(&state, nullptr, 0, bytes.data() + size);
  bytes.resize(size);
  return bytes;
}

std::size_t Next_Line(std::string_view text, std::size_t at) {
  const std::size_t end = text.find('\n', at);
  return end == std::string_view::npos ? text.size() : end + 1;
}

// The name in "begin 644 NAME"; empty if the line is none.
std::string_view Name_In_Begin(std::string_view line) {
  constexpr std::string_view begin = "begin ";
  if (!line.starts_with(begin)) return {};
  line.remove_prefix(begin.size());
  const std::size_t digits = line.find_first_not_of("01234567");
  if (digits == std::string_view::npos || digits < 3 || digits > 4 || line[digits] != ' ') return {};
  return line.substr(digits + 1);
}

// The count of bytes in a line of data; -1 if it cannot be one.
int Bytes_In_Line(std::string_view line) {
  if (line.empty() || line[0] < ' ' || line[0] > '`') return -1;
  const int bytes = (line[0] - ' ') & 0x3F;
  // Blanks at the end of a line may have been lost on the way, and some writers add a check character.
  const std::size_t needed = (static_cast<std::size_t>(bytes) + 2) / 3 * 4;
  return line.size() <= needed + 2 ? bytes : -1;
}

struct Uu_Block {
  std::size_t end = 0;  // behind its last line; 0 if it is no whole block
  std::int64_t size = 0;
  std::size_t seen = 0;  // how far the text was read
};

Uu_Block Read_Block(std::string_view text, std::size_t at) {
  Uu_Block block;
  while (at < text.size()) {
    const std::size_t next = Next_Line(text, at);
    const std::string_view line = First_Line(text.substr(at, next - at));
    block.seen = at;
    if (line == "end") {
      block.end = next;
      return block;
    }
    const int bytes = line.empty() ? 0 : Bytes_In_Line(line);
    if (bytes < 0) return block;
    block.size += bytes;
    at = next;
  }
  block.seen = at;
  return block;
}

}  // namespace

std::string Decode_Base64(std::string_view text) {
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  std::size_t size = 0;
  std::uint32_t group = 0;
  int digits = 0;
  const auto end_block = [&] {
    if (digits >= 2) bytes[size++] = static_cast<char>(digits == 2 ? group >> 4 : group >> 10);
    if (digits == 3) bytes[size++] = static_cast<char>((group >> 2) & 0xFF);
    group = 0;
    digits = 0;
  };
  for (const char c : text) {
    const std::uint8_t value = base64_values[static_cast<unsigned char>(c)];
    if (value < padding) {
      group = (group << 6) | value;
      if (++digits < 4) continue;
      bytes[size++] = static_cast<char>((group >> 16) & 0xFF);
      bytes[size++] = static_cast<char>((group >> 8) & 0xFF);
      bytes[size++] = static_cast<char>(group & 0xFF);
      group = 0;
      digits = 0;
    } else if (value == padding) {
      end_block();
    }
  }
  end_block();
  bytes.resize(size);
  return bytes;
}

std::int64_t Decoded_Base64_Size(std::string_view text) {
  std::int64_t size = 0;
  std::int64_t digits = 0;
  for (const char c : text) {
    const std::uint8_t value = base64_values[static_cast<unsigned char>(c)];
    if (value < padding) {
      ++digits;
    } else if (value == padding) {
      size += digits * 3 / 4;
      digits = 0;
    }
  }
  return size + digits * 3 / 4;
}

std::string Decode_Transfer(std::string_view text, std::string_view encoding) {
  if (Same_Name(encoding, "base64")) return Decode_Base64(text);
  if (Same_Name(encoding, "quoted-printable")) return Decode_Quoted_Printable(text);
  return std::string(text);
}

std::string Encode_Transfer(std::string_view bytes, std::string_view encoding) {
  GMimeContentEncoding coding = GMIME_CONTENT_ENCODING_DEFAULT;
  if (Same_Name(encoding, "base64")) coding = GMIME_CONTENT_ENCODING_BASE64;
  if (Same_Name(encoding, "quoted-printable")) coding = GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE;
  if (coding == GMIME_CONTENT_ENCODING_DEFAULT) return std::string(bytes);
  GMimeEncoding state;
  g_mime_encoding_init_encode(&state, coding);
  std::string text(g_mime_encoding_outlen(&state, bytes.size()), '\0');
  text.resize(g_mime_encoding_flush(&state, bytes.data(), bytes.size(), text.data()));
  return text;
}

std::int64_t Decoded_Transfer_Size(std::string_view text, std::string_view encoding) {
  if (Same_Name(encoding, "base64")) return Decoded_Base64_Size(text);
  if (Same_Name(encoding, "quoted-printable"))
    return static_cast<std::int64_t>(Decode_Quoted_Printable(text).size());
  if (Same_Name(encoding, "x-uuencode") || Same_Name(encoding, "uuencode") || Same_Name(encoding, "x-uue")) {
    std::string rest(text);
    const std::vector<Uuencoded_File> files = Take_Uuencoded(rest);
    if (!files.empty()) return files.front().size;
  }
  return static_cast<std::int64_t>(text.size());
}

std::vector<Uuencoded_File> Take_Uuencoded(std::string& text) {
  std::vector<Uuencoded_File> files;
  if (text.find("begin ") == std::string::npos) return files;
  std::string rest;
  std::size_t kept = 0;  // what lies before is in `rest`, or in a file
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = Next_Line(text, at);
    const std::string_view name = Name_In_Begin(First_Line(std::string_view(text).substr(at, next - at)));
    if (name.empty()) {
      at = next;
      continue;
    }
    const Uu_Block block = Read_Block(text, next);
    if (block.end == 0) {
      at = std::max(next, block.seen);
      continue;
    }
    files.push_back({std::string(name), block.size});
    rest.append(text, kept, at - kept);
    at = kept = block.end;
  }
  if (files.empty()) return files;
  rest.append(text, kept);
  text = std::move(rest);
  return files;
}

}  // namespace tidyfold
