#include "mail/header_parameters.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "mail/charset.h"
#include "mail/header_text.h"
#include "mail/mail_headers.h"

namespace tidyfold {
namespace {

// One parameter as it is written: `name*0*=value`.
struct Parameter {
  std::string_view name;  // without section and star
  int section = 0;
  bool extended = false;  // with charset and hexadecimal bytes
  std::string value;      // without quotes
};

class Parameter_Reader {
 public:
  explicit Parameter_Reader(std::string_view value) : rest_(value) { Skip_To_Next(); }

  std::optional<Parameter> Next() {
    while (!rest_.empty()) {
      const std::size_t name_end = std::min(rest_.find_first_of("=;"), rest_.size());
      std::string_view name = Header_Trim(rest_.substr(0, name_end));
      rest_.remove_prefix(name_end);
      if (rest_.empty() || rest_.front() == ';') {
        Skip_To_Next();
        continue;
      }
      rest_.remove_prefix(1);
      Parameter parameter;
      if (name.ends_with('*')) {
        parameter.extended = true;
        name.remove_suffix(1);
      }
      if (const std::size_t star = name.find('*'); star != std::string_view::npos) {
        std::from_chars(name.data() + star + 1, name.data() + name.size(), parameter.section);
        name = name.substr(0, star);
      }
      parameter.name = name;
      parameter.value = Value();
      Skip_To_Next();
      return parameter;
    }
    return std::nullopt;
  }

 private:
  std::string Value() {
    rest_ = Header_Trim(rest_);
    if (!rest_.starts_with('"')) {
      const std::size_t end = std::min(rest_.find(';'), rest_.size());
      const std::string_view value = Header_Trim(rest_.substr(0, end));
      rest_.remove_prefix(end);
      return std::string(value);
    }
    std::string value;
    std::size_t at = 1;
    for (; at < rest_.size() && rest_[at] != '"'; ++at) {
      if (rest_[at] == '\\' && at + 1 < rest_.size()) ++at;
      value += rest_[at];
    }
    rest_.remove_prefix(std::min(at + 1, rest_.size()));
    return value;
  }

  void Skip_To_Next() { rest_.remove_prefix(std::min(rest_.find(';'), rest_.size() - 1) + 1); }

  std::string_view rest_;
};

}  // namespace

std::string Header_Word(std::string_view value) {
  std::string word(Header_Trim(value.substr(0, value.find_first_of(";("))));
  std::transform(word.begin(), word.end(), word.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return word;
}

std::string Header_Parameter(std::string_view value, std::string_view name, std::string_view raw_charset) {
  constexpr int most_sections = 1000;
  const std::string text = Unfolded(value);
  Parameter_Reader reader(text);
  std::vector<Parameter> sections;
  while (std::optional<Parameter> parameter = reader.Next()) {
    if (!Same_Name(parameter->name, name) || parameter->section < 0 || parameter->section >= most_sections)
      continue;
    sections.push_back(std::move(*parameter));
  }
  std::stable_sort(sections.begin(), sections.end(), [](const Parameter& left, const Parameter& right) {
    return left.section < right.section;
  });
  // Only the first of several that claim the same place.
  sections.erase(std::unique(sections.begin(), sections.end(),
                             [](const Parameter& left, const Parameter& right) {
                               return left.section == right.section;
                             }),
                 sections.end());
  if (sections.empty()) return {};
  std::string charset(raw_charset);
  std::string bytes;
  bool extended = false;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    std::string_view piece = sections[i].value;
    if (!sections[i].extended) {
      bytes += piece;
      continue;
    }
    extended = true;
    if (i == 0) {  // charset'language'text
      const std::size_t first = piece.find('\'');
      const std::size_t second = first == std::string_view::npos ? first : piece.find('\'', first + 1);
      if (second != std::string_view::npos) {
        charset = piece.substr(0, first);
        piece.remove_prefix(second + 1);
      }
    }
    bytes += Decode_Hex(piece, '%');
  }
  return extended ? One_Line(To_Utf8(bytes, charset)) : Header_Text(bytes, raw_charset);
}

std::string Header_Identity(std::string_view value) {
  std::string_view text = Header_Trim(value);
  if (const std::size_t open = text.rfind('<'); open != std::string_view::npos) {
    text.remove_prefix(open + 1);
    text = text.substr(0, text.find('>'));
  }
  return Header_Text(text);
}

}  // namespace tidyfold
