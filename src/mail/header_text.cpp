#include "mail/header_text.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "base/text.h"
#include "mail/charset.h"
#include "mail/mail_headers.h"
#include "mail/transfer_encoding.h"

namespace tidyfold {
namespace {

bool Is_Blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

int Hex_Digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::string Raw_Text(std::string_view bytes, std::string_view charset) {
  std::string text = Valid_Utf8(bytes);
  // Old Japanese and Korean mail: seven bits, with escapes.
  const bool escapes = bytes.find('\x1B') != std::string_view::npos && charset.size() > 8 &&
                       Same_Name(charset.substr(0, 8), "iso-2022");
  if (text.size() == bytes.size() && !escapes) return text;
  return To_Utf8(bytes, Same_Name(charset, "utf-8") ? std::string_view() : charset);
}

// "=?charset?B?text?="
struct Encoded_Word {
  std::string_view charset;
  std::string_view text;
  bool base64 = false;
  std::size_t end = 0;
};

std::optional<Encoded_Word> Encoded_Word_At(std::string_view text, std::size_t at) {
  constexpr std::size_t longest_charset = 64;
  if (!text.substr(at).starts_with("=?")) return std::nullopt;
  const std::string_view rest = text.substr(at + 2);
  const std::size_t charset_end = rest.substr(0, longest_charset).find('?');
  if (charset_end == std::string_view::npos || charset_end == 0 || charset_end + 2 >= rest.size() ||
      rest[charset_end + 2] != '?') {
    return std::nullopt;
  }
  Encoded_Word word;
  const char encoding = rest[charset_end + 1];
  word.base64 = encoding == 'B' || encoding == 'b';
  if (!word.base64 && encoding != 'Q' && encoding != 'q') return std::nullopt;
  const std::size_t begin = charset_end + 3;
  std::size_t end = rest.find('?', begin);
  while (end != std::string_view::npos && !rest.substr(end).starts_with("?=")) {
    if (rest[end - 1] == '=' && end > begin) return std::nullopt;  // here the next word begins
    end = rest.find('?', end + 1);
  }
  if (end == std::string_view::npos) return std::nullopt;
  word.charset = rest.substr(0, charset_end);
  word.charset = word.charset.substr(0, word.charset.find('*'));  // a language may follow
  word.text = rest.substr(begin, end - begin);
  word.end = at + 2 + end + 2;
  return word;
}

std::string Decode_Quoted(std::string_view word) {
  std::string text(word);
  std::replace(text.begin(), text.end(), '_', ' ');
  return Decode_Hex(text, '=');
}

// Words that stand beside each other in one charset. A character may begin in one and end in the next.
std::string Decode_Words(const std::vector<Encoded_Word>& words) {
  std::string bytes, joined;
  bool cut = false;
  bool base64 = true;
  for (const Encoded_Word& word : words) {
    bytes += word.base64 ? Decode_Base64(word.text) : Decode_Quoted(word.text);
    joined += word.text;
    cut = cut || word.text.size() % 4 != 0;
    base64 = base64 && word.base64;
  }
  // Some writers cut the encoded text wherever a line ends, so that only all the words together are whole.
  if (base64 && cut && joined.size() % 4 == 0) bytes = Decode_Base64(joined);
  return To_Utf8(bytes, words.front().charset);
}

// Without the final clean-up to one line.
std::string Decode_Text(std::string_view value, std::string_view raw_charset) {
  const std::string text = Unfolded(value);
  std::string decoded;
  std::size_t raw = 0;  // where the text that is not yet decoded begins
  std::vector<Encoded_Word> words;
  bool after_word = false;
  std::size_t at = 0;
  while ((at = text.find("=?", at)) != std::string::npos) {
    const std::optional<Encoded_Word> first = Encoded_Word_At(text, at);
    if (!first) {
      at += 2;
      continue;
    }
    const std::string_view between = std::string_view(text).substr(raw, at - raw);
    if (!after_word || !Header_Trim(between).empty()) decoded += Raw_Text(between, raw_charset);
    words = {*first};
    at = first->end;
    while (true) {
      std::size_t next = at;
      while (next < text.size() && Is_Blank(text[next])) ++next;
      const std::optional<Encoded_Word> word = Encoded_Word_At(text, next);
      if (!word || !Same_Name(word->charset, first->charset)) break;
      words.push_back(*word);
      at = word->end;
    }
    decoded += Decode_Words(words);
    raw = at;
    after_word = true;
  }
  decoded += Raw_Text(std::string_view(text).substr(raw), raw_charset);
  return decoded;
}

}  // namespace

std::string Unfolded(std::string_view value) {
  std::string text(Header_Trim(value));
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

std::string Header_Text(std::string_view value, std::string_view raw_charset) {
  // Nothing is folded, encoded or escaped in most of them.
  const std::string_view trimmed = Header_Trim(value);
  const bool plain = std::all_of(trimmed.begin(), trimmed.end(), [](char c) { return c >= ' ' && c < 0x7F; });
  if (plain && trimmed.find("=?") == std::string_view::npos) return std::string(trimmed);
  return One_Line(Decode_Text(value, raw_charset));
}

std::size_t Encoded_Word_Length(std::string_view text) {
  const std::optional<Encoded_Word> word = Encoded_Word_At(text, 0);
  return word ? word->end : 0;
}

std::string_view Header_Trim(std::string_view value) {
  while (!value.empty() && Is_Blank(value.front())) value.remove_prefix(1);
  while (!value.empty() && Is_Blank(value.back())) value.remove_suffix(1);
  return value;
}

std::string Decode_Hex(std::string_view text, char mark) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool coded = text[at] == mark && at + 2 < text.size() && Hex_Digit(text[at + 1]) >= 0 &&
                       Hex_Digit(text[at + 2]) >= 0;
    if (coded) {
      bytes += static_cast<char>(Hex_Digit(text[at + 1]) * 16 + Hex_Digit(text[at + 2]));
      at += 2;
    } else {
      bytes += text[at];
    }
  }
  return bytes;
}

}  // namespace tidyfold
