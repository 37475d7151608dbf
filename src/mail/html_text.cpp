#include "mail/html_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "mail/charset.h"

namespace tidyfold {
namespace {

// Names of the characters from U+00A0 to U+00FF, in order.
constexpr std::string_view latin_names =
    "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not shy reg macr deg plusmn sup2 sup3 "
    "acute "
    "micro para middot cedil sup1 ordm raquo frac14 frac12 frac34 iquest Agrave Aacute Acirc Atilde Auml "
    "Aring AElig "
    "Ccedil Egrave Eacute Ecirc Euml Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute Ocirc Otilde Ouml "
    "times "
    "Oslash Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave aacute acirc atilde auml aring aelig ccedil "
    "egrave "
    "eacute ecirc euml igrave iacute icirc iuml eth ntilde ograve oacute ocirc otilde ouml divide oslash "
    "ugrave "
    "uacute ucirc uuml yacute thorn yuml ";

constexpr std::array<std::pair<std::string_view, char32_t>, 36> other_names = {{
    {"amp", '&'},       {"lt", '<'},        {"gt", '>'},        {"quot", '"'},      {"apos", '\''},
    {"euro", 0x20AC},   {"ndash", 0x2013},  {"mdash", 0x2014},  {"lsquo", 0x2018},  {"rsquo", 0x2019},
    {"sbquo", 0x201A},  {"ldquo", 0x201C},  {"rdquo", 0x201D},  {"bdquo", 0x201E},  {"hellip", 0x2026},
    {"bull", 0x2022},   {"dagger", 0x2020}, {"Dagger", 0x2021}, {"permil", 0x2030}, {"lsaquo", 0x2039},
    {"rsaquo", 0x203A}, {"trade", 0x2122},  {"OElig", 0x0152},  {"oelig", 0x0153},  {"Scaron", 0x0160},
    {"scaron", 0x0161}, {"Yuml", 0x0178},   {"fnof", 0x0192},   {"larr", 0x2190},   {"rarr", 0x2192},
    {"minus", 0x2212},  {"infin", 0x221E},  {"ensp", 0x2002},   {"emsp", 0x2003},   {"thinsp", 0x2009},
    {"zwnj", 0x200C},
}};

// Elements that begin and end a line, and those with a blank line around them.
constexpr std::array<std::string_view, 29> line_elements = {
    "div",    "tr",    "li",    "table",   "ul",      "ol",    "dl",     "dt",         "dd",      "hr",
    "pre",    "form",  "body",  "center",  "address", "nav",   "header", "blockquote", "section", "article",
    "footer", "tbody", "thead", "caption", "main",    "aside", "figure", "fieldset",   "option"};
constexpr std::array<std::string_view, 7> paragraph_elements = {"p", "h1", "h2", "h3", "h4", "h5", "h6"};
constexpr std::array<std::string_view, 4> unseen_elements = {"script", "style", "title", "template"};

template <std::size_t size>
bool Is_One_Of(const std::array<std::string_view, size>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
bool Is_Blank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
bool Is_Letter_Or_Digit(char c) {
  return (Lower(c) >= 'a' && Lower(c) <= 'z') || (c >= '0' && c <= '9');
}

void Append_Utf8(std::string& text, char32_t c) {
  const auto byte = [&](char32_t value) { text += static_cast<char>(static_cast<unsigned char>(value)); };
  if (c < 0x80) {
    byte(c);
  } else if (c < 0x800) {
    byte(0xC0 | (c >> 6));
    byte(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    byte(0xE0 | (c >> 12));
    byte(0x80 | ((c >> 6) & 0x3F));
    byte(0x80 | (c & 0x3F));
  } else {
    byte(0xF0 | (c >> 18));
    byte(0x80 | ((c >> 12) & 0x3F));
    byte(0x80 | ((c >> 6) & 0x3F));
    byte(0x80 | (c & 0x3F));
  }
}

std::unordered_map<std::string_view, char32_t> Named_Characters() {
  std::unordered_map<std::string_view, char32_t> names(other_names.begin(), other_names.end());
  char32_t c = 0xA0;
  for (std::size_t at = 0; at < latin_names.size(); ++c) {
    const std::size_t end = latin_names.find(' ', at);
    names.emplace(latin_names.substr(at, end - at), c);
    at = end + 1;
  }
  return names;
}

// Builds the text: runs of blanks become one, line breaks come only where a block wants them.
class Text_Writer {
 public:
  void Blank() { blank_ = true; }
  void Break(int lines) { breaks_ = std::max(breaks_, lines); }
  void Line() {
    if (!text_.empty() && breaks_ < 2) ++breaks_;
    blank_ = false;
  }
  void Append(std::string_view piece) {
    if (breaks_ > 0) {
      if (!text_.empty()) text_.append(static_cast<std::size_t>(breaks_), '\n');
    } else if (blank_ && !text_.empty()) {
      text_ += ' ';
    }
    breaks_ = 0;
    blank_ = false;
    text_ += piece;
  }
  // A line break or blank that is kept as it is.
  void Append_Exactly(char c) {
    Append({});
    text_ += c;
  }
  std::string Take() { return std::move(text_); }

 private:
  std::string text_;
  bool blank_ = false;
  int breaks_ = 0;
};

class Html_Reader {
 public:
  explicit Html_Reader(std::string_view html) : html_(html) {}

  std::string Read() {
    while (at_ < html_.size()) {
      const char c = html_[at_];
      if (c == '<' && Markup()) continue;
      if (c == '&') {
        Reference();
      } else if (Is_Blank(c)) {
        if (!preformatted_) {
          writer_.Blank();
        } else if (c != '\r') {
          writer_.Append_Exactly(c);
        }
        ++at_;
      } else {
        const std::size_t end = std::min(html_.find_first_of("<& \t\r\n\f", at_ + 1), html_.size());
        writer_.Append(html_.substr(at_, end - at_));
        at_ = end;
      }
    }
    return writer_.Take();
  }

 private:
  // False when the "<" is just a character.
  bool Markup() {
    const std::string_view rest = html_.substr(at_);
    if (rest.starts_with("<!--")) {
      Skip_Behind("-->", at_ + 4);
      return true;
    }
    if (rest.size() > 1 && (rest[1] == '!' || rest[1] == '?')) {
      Skip_Behind(">", at_ + 1);
      return true;
    }
    std::size_t name_at = at_ + 1;
    const bool closing = name_at < html_.size() && html_[name_at] == '/';
    if (closing) ++name_at;
    if (name_at >= html_.size() || !(Lower(html_[name_at]) >= 'a' && Lower(html_[name_at]) <= 'z'))
      return false;
    std::string name;
    while (name_at < html_.size() && Is_Letter_Or_Digit(html_[name_at])) name += Lower(html_[name_at++]);
    at_ = End_Of_Tag(name_at);
    Element(name, closing);
    return true;
  }

  // A ">" inside a quoted value does not end the tag, unless the quote is never closed.
  std::size_t End_Of_Tag(std::size_t from) const {
    for (std::size_t at = from; at < html_.size(); ++at) {
      if (html_[at] == '>') return at + 1;
      if ((html_[at] == '"' || html_[at] == '\'') && html_[at - 1] == '=') {
        const std::size_t quote = html_.find(html_[at], at + 1);
        if (quote == std::string_view::npos) break;
        at = quote;
      }
    }
    const std::size_t end = html_.find('>', from);
    return end == std::string_view::npos ? html_.size() : end + 1;
  }

  void Element(std::string_view name, bool closing) {
    if (Is_One_Of(unseen_elements, name)) {
      if (!closing) Skip_Element(name);
    } else if (name == "br" || name == "nl") {  // "nl" is from text/enriched
      writer_.Line();
    } else if (Is_One_Of(paragraph_elements, name)) {
      writer_.Break(2);
    } else if (Is_One_Of(line_elements, name)) {
      writer_.Break(1);
      if (name == "li" && !closing) writer_.Append("- ");
      if (name == "pre") preformatted_ = !closing;
    } else if (name == "td" || name == "th") {
      writer_.Blank();
    }
  }

  void Skip_Element(std::string_view name) {
    while (at_ < html_.size()) {
      const std::size_t open = html_.find("</", at_);
      if (open == std::string_view::npos) break;
      at_ = open + 2;
      const std::string_view found = html_.substr(at_, name.size());
      if (std::equal(found.begin(), found.end(), name.begin(), name.end(),
                     [](char left, char right) { return Lower(left) == right; })) {
        at_ = End_Of_Tag(at_);
        return;
      }
    }
    at_ = html_.size();
  }

  void Skip_Behind(std::string_view mark, std::size_t from) {
    const std::size_t found = html_.find(mark, from);
    at_ = found == std::string_view::npos ? html_.size() : found + mark.size();
  }

  void Reference() {
    std::size_t end = at_ + 1;
    if (end < html_.size() && html_[end] == '#') ++end;
    while (end < html_.size() && end - at_ < 12 && Is_Letter_Or_Digit(html_[end])) ++end;
    const char32_t c = Referenced(html_.substr(at_ + 1, end - at_ - 1));
    if (c == 0) {
      writer_.Append("&");
      ++at_;
      return;
    }
    at_ = end;
    if (at_ < html_.size() && html_[at_] == ';') ++at_;
    if (c == 0xA0) {
      writer_.Append(" ");
    } else if (c < 0x20) {
      writer_.Blank();
    } else if (c >= 0x80 && c < 0xA0) {  // in practice Windows-1252
      const char byte = static_cast<char>(static_cast<unsigned char>(c));
      writer_.Append(To_Utf8(std::string_view(&byte, 1), "windows-1252"));
    } else if (c != 0xAD) {  // a soft hyphen is not shown
      std::string text;
      Append_Utf8(text, c);
      writer_.Append(text);
    }
  }

  // 0 if the name or number is that of no character.
  static char32_t Referenced(std::string_view name) {
    if (name.starts_with('#')) return Numbered(name.substr(1));
    static const std::unordered_map<std::string_view, char32_t> names = Named_Characters();
    const auto found = names.find(name);
    return found == names.end() ? 0 : found->second;
  }

  static char32_t Numbered(std::string_view digits) {
    const bool hexadecimal = !digits.empty() && Lower(digits[0]) == 'x';
    if (hexadecimal) digits.remove_prefix(1);
    std::uint64_t value = 0;
    for (const char digit : digits) {
      const char lower = Lower(digit);
      const int number = lower >= 'a' ? lower - 'a' + 10 : lower - '0';
      if (number >= (hexadecimal ? 16 : 10)) return 0;
      value = value * (hexadecimal ? 16 : 10) + static_cast<std::uint64_t>(number);
    }
    if (digits.empty() || value == 0) return 0;
    if (value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return 0xFFFD;
    return static_cast<char32_t>(value);
  }

  std::string_view html_;
  std::size_t at_ = 0;
  bool preformatted_ = false;
  Text_Writer writer_;
};

}  // namespace

std::string Html_To_Text(std::string_view html) {
  return Html_Reader(html).Read();
}

std::string Html_Charset(std::string_view html) {
  std::string head(html.substr(0, 2048));
  std::transform(head.begin(), head.end(), head.begin(), Lower);
  const std::size_t found = head.find("charset=");
  if (found == std::string::npos) return {};
  const std::size_t begin = head.find_first_not_of("\"' ", found + 8);
  if (begin == std::string::npos) return {};
  return head.substr(begin, std::min(head.find_first_of("\"' ;/>", begin), head.size()) - begin);
}

}  // namespace tidyfold
