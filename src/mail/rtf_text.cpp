#include "mail/rtf_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "mail/charset.h"

namespace tidyfold {
namespace {

constexpr std::array<std::string_view, 16> other_groups = {
    "fonttbl", "colortbl", "stylesheet", "info",    "pict",    "object",  "header",  "headerl",
    "headerr", "headerf",  "footer",     "footerl", "footerr", "footerf", "fldinst", "themedata"};

constexpr std::array<std::pair<std::string_view, std::string_view>, 13> characters = {{
    {"par", "\n"},
    {"line", "\n"},
    {"row", "\n"},
    {"sect", "\n"},
    {"page", "\n"},
    {"tab", "\t"},
    {"cell", "\t"},
    {"emdash", "\u2014"},
    {"endash", "\u2013"},
    {"lquote", "\u2018"},
    {"rquote", "\u2019"},
    {"ldblquote", "\u201C"},
    {"rdblquote", "\u201D"},
}};

struct Group {
  bool elsewhere = false;  // not part of the body's text
  bool hidden = false;
  std::int32_t characters_after_unicode = 1;
};

class Rtf_Reader {
 public:
  explicit Rtf_Reader(std::string_view rtf) : rtf_(rtf) {}

  std::string Read() {
    while (at_ < rtf_.size()) {
      const char c = rtf_[at_++];
      switch (c) {
        case '{':
          Flush();
          skip_ = 0;
          groups_.push_back(groups_.back());
          break;
        case '}':
          Flush();
          skip_ = 0;
          if (groups_.size() > 1) groups_.pop_back();
          break;
        case '\\':
          Control();
          break;
        case '\r':
        case '\n':
          break;
        default:
          Byte(c);
      }
    }
    Flush();
    return std::move(text_);
  }

 private:
  void Control() {
    if (at_ >= rtf_.size()) return;
    const char c = rtf_[at_];
    if (c == '\'') {
      Hexadecimal();
      return;
    }
    if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) {
      ++at_;
      if (c == '*') groups_.back().elsewhere = true;
      if (c == '\\' || c == '{' || c == '}') Byte(c);
      if (c == '~') Text("\u00A0");
      if (c == '_') Text("-");
      if (c == '\r' || c == '\n') Text("\n");
      return;
    }
    const std::size_t begin = at_;
    while (at_ < rtf_.size() &&
           ((rtf_[at_] >= 'a' && rtf_[at_] <= 'z') || (rtf_[at_] >= 'A' && rtf_[at_] <= 'Z'))) {
      ++at_;
    }
    const std::string_view word = rtf_.substr(begin, at_ - begin);
    std::int32_t number = 1;
    const auto [end, error] = std::from_chars(rtf_.data() + at_, rtf_.data() + rtf_.size(), number);
    const bool numbered = error == std::errc();
    if (numbered) at_ = static_cast<std::size_t>(end - rtf_.data());
    if (at_ < rtf_.size() && rtf_[at_] == ' ') ++at_;
    Word(word, number, numbered);
  }

  bool Seen() const { return !groups_.back().elsewhere && !groups_.back().hidden; }

  void Word(std::string_view word, std::int32_t number, bool numbered) {
    Group& group = groups_.back();
    if (word == "u" && numbered) {
      if (!bytes_.empty()) Flush();
      // Signed 16 bits; characters beyond them come as surrogate pairs.
      if (Seen()) {
        utf16_ += static_cast<char>(number & 0xFF);
        utf16_ += static_cast<char>((number >> 8) & 0xFF);
      }
      skip_ = group.characters_after_unicode;
    } else if (word == "uc") {
      group.characters_after_unicode = number;
    } else if (word == "ansicpg") {
      charset_ = Code_Page_Charset(static_cast<std::uint32_t>(number));
    } else if (word == "v") {
      Flush();
      group.hidden = !numbered || number != 0;
    } else if (word == "bin" && numbered && number > 0) {
      at_ = std::min(rtf_.size(), at_ + static_cast<std::size_t>(number));
    } else {
      for (const std::string_view name : other_groups) {
        if (name == word) group.elsewhere = true;
      }
      for (const auto& [name, character] : characters) {
        if (name == word) Text(character);
      }
    }
  }

  void Hexadecimal() {
    unsigned value = 0;
    const std::string_view digits = rtf_.substr(at_ + 1, 2);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    at_ = std::min(rtf_.size(), at_ + 3);
    if (result.ec == std::errc()) Byte(static_cast<char>(value));
  }

  void Byte(char byte) {
    if (skip_ > 0) {
      --skip_;
      return;
    }
    if (!Seen()) return;
    if (!utf16_.empty()) Flush();
    bytes_ += byte;
  }

  void Text(std::string_view text) {
    if (!Seen()) return;
    Flush();
    text_ += text;
  }

  // Characters may take several bytes, so runs of bytes are converted together.
  void Flush() {
    if (!utf16_.empty()) text_ += To_Utf8(std::exchange(utf16_, {}), "UTF-16LE");
    if (!bytes_.empty()) text_ += To_Utf8(std::exchange(bytes_, {}), charset_);
  }

  std::string_view rtf_;
  std::size_t at_ = 0;
  std::vector<Group> groups_ = {Group{}};
  std::string charset_ = "CP1252";
  std::string bytes_;
  std::string utf16_;
  std::int32_t skip_ = 0;
  std::string text_;
};

}  // namespace

std::string Rtf_To_Text(std::string_view rtf) {
  return Rtf_Reader(rtf).Read();
}

}  // namespace tidyfold
