#include "mail/charset.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include "base/text.h"
#include "mail/gmime_ptr.h"

namespace tidyfold {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// Charset names that are in use for a larger charset.
constexpr std::array<std::pair<std::string_view, const char*>, 9> wider = {{
    {"iso-8859-1", "CP1252"},
    {"latin1", "CP1252"},
    {"iso-8859-9", "CP1254"},
    {"iso-8859-8-i", "ISO-8859-8"},
    {"gb2312", "GB18030"},
    {"gbk", "GB18030"},
    {"ks_c_5601-1987", "CP949"},
    {"shift_jis", "CP932"},
    {"x-sjis", "CP932"},
}};

constexpr std::array<std::string_view, 6> undeclared = {"",          "us-ascii",     "ascii",
                                                        "x-unknown", "unknown-8bit", "utf-8"};

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : static_cast<char>(c);
  });
  return lower;
}

struct Close_Converter {
  void operator()(GIConv converter) const { g_iconv_close(converter); }
};

// False if the system does not know the charset.
bool Convert(std::string_view bytes, const char* charset, std::string& text) {
  const GIConv opened = g_iconv_open("UTF-8", charset);
  if (opened == reinterpret_cast<GIConv>(-1)) return false;
  const std::unique_ptr<std::remove_pointer_t<GIConv>, Close_Converter> converter(opened);

  std::string input(bytes);
  char* in = input.data();
  gsize in_left = input.size();
  std::array<char, 4096> buffer;
  text.reserve(input.size());
  bool flush = false;
  while (true) {
    char* out = buffer.data();
    gsize out_left = buffer.size();
    const gsize result = flush ? g_iconv(opened, nullptr, nullptr, &out, &out_left)
                               : g_iconv(opened, &in, &in_left, &out, &out_left);
    const int error = errno;
    text.append(buffer.data(), static_cast<std::size_t>(out - buffer.data()));
    if (result == static_cast<gsize>(-1) && error == E2BIG) continue;
    if (result == static_cast<gsize>(-1) && in_left > 0) {
      text += replacement;
      ++in;
      --in_left;
      continue;
    }
    if (std::exchange(flush, true)) return true;
  }
}

}  // namespace

std::string To_Utf8(std::string_view bytes, std::string_view charset) {
  const std::string name = Lower(charset);
  std::string text;
  const bool declared = std::find(undeclared.begin(), undeclared.end(), name) == undeclared.end();
  const auto* known =
      std::find_if(wider.begin(), wider.end(), [&](const auto& pair) { return pair.first == name; });
  Start_Gmime();
  const char* converter = known != wider.end() ? known->second : g_mime_charset_iconv_name(name.c_str());
  if (!declared || name.find('\0') != std::string::npos || !Convert(bytes, converter, text)) {
    text = Valid_Utf8(bytes);
    if (name != "utf-8" && text.size() != bytes.size()) {
      text.clear();
      Convert(bytes, "CP1252", text);
    }
  }
  std::erase(text, '\0');
  return text;
}

std::string Code_Page_Charset(std::uint32_t code_page) {
  switch (code_page) {
    case 0:
    case 1:  // "the system's", of a system that is not here
      return {};
    case 1200:
      return "UTF-16LE";
    case 10000:
      return "MACINTOSH";
    case 20127:
      return "us-ascii";
    case 20866:
      return "KOI8-R";
    case 21866:
      return "KOI8-U";
    case 20932:
    case 51932:
      return "EUC-JP";
    case 50220:
    case 50221:
    case 50222:
      return "ISO-2022-JP";
    case 50225:
      return "ISO-2022-KR";
    case 51949:
      return "EUC-KR";
    case 20936:
    case 936:
    case 52936:
    case 54936:
      return "GB18030";
    case 65000:
      return "UTF-7";
    case 65001:
      return "utf-8";
    default:
      if (code_page > 28590 && code_page < 28607) return "iso-8859-" + std::to_string(code_page - 28590);
      return "CP" + std::to_string(code_page);
  }
}

std::string One_Line(std::string_view text) {
  std::string line = Valid_Utf8(text);
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return line;
}

}  // namespace tidyfold
