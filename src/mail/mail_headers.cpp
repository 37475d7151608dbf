#include "mail/mail_headers.h"

#include <algorithm>

namespace tidyfold {
namespace {

constexpr std::array<std::string_view, 17> field_names = {"from",
                                                          "sender",
                                                          "to",
                                                          "subject",
                                                          "date",
                                                          "received",
                                                          "message-id",
                                                          "list-id",
                                                          "status",
                                                          "x-status",
                                                          "x-mozilla-status",
                                                          "x-gmail-labels",
                                                          "content-type",
                                                          "content-transfer-encoding",
                                                          "content-disposition",
                                                          "content-id",
                                                          "x-apple-content-length"};

// Longer than the value of any field that a person or a program wrote in earnest.
constexpr std::size_t longest_value = std::size_t{1} << 20;

// Any text may begin with "Word: ...", but hardly with one of these.
constexpr std::array<std::string_view, 16> mail_names = {
    "from",       "to",           "subject",        "date",    "received",     "return-path",
    "message-id", "sender",       "reply-to",       "cc",      "mime-version", "content-type",
    "bcc",        "delivered-to", "dkim-signature", "x-mailer"};

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// The name of the field that begins here; empty if none does.
std::string_view Field_Name(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && text[at] > ' ' && text[at] < 0x7F && text[at] != ':') ++at;
  const std::string_view name = text.substr(0, at);
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  return at < text.size() && text[at] == ':' ? name : std::string_view();
}

std::size_t Next_Line(std::string_view text, std::size_t at) {
  const std::size_t end = text.find('\n', at);
  return end == std::string_view::npos ? text.size() : end + 1;
}

std::string_view Shortened(std::string_view value) {
  return value.substr(0, longest_value);
}

// Whether one of the next lines, of which none is empty, begins a field.
bool Field_Follows(std::string_view text, std::size_t at) {
  constexpr int farthest = 3;
  for (int i = 0; i < farthest && at < text.size(); ++i) {
    if (text[at] == '\n' || text[at] == '\r') return false;
    if (Begins_With_Header(text.substr(at))) return true;
    at = Next_Line(text, at);
  }
  return false;
}

}  // namespace

std::size_t Mail_Headers::Read(std::string_view text,
                               const std::function<bool(std::string_view line)>& ends_part) {
  std::string_view* current = nullptr;  // the value that a continuation line belongs to
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = Next_Line(text, at);
    const std::string_view line = First_Line(text.substr(at, next - at));
    if (line.empty()) return next;
    if (ends_part && line.starts_with("--") && ends_part(line)) return at;
    if (line[0] == ' ' || line[0] == '\t') {
      if (current != nullptr)
        *current = Shortened(
            {current->data(), static_cast<std::size_t>(line.data() + line.size() - current->data())});
    } else if (const std::string_view name = Field_Name(line); !name.empty()) {
      any_ = true;
      current = nullptr;
      static_assert(field_names.size() == count);
      const auto* known = std::find_if(field_names.begin(), field_names.end(), [&](std::string_view field) {
        return field.size() == name.size() && Same_Name(field, name);
      });
      if (known != field_names.end()) {
        std::string_view& value = values_[static_cast<std::size_t>(known - field_names.begin())];
        if (value.data() == nullptr) {
          value = Shortened(line.substr(line.find(':') + 1));
          current = &value;
        }
      }
    } else {
      // A part without any header has a body only.
      const bool skipped = (any_ || !ends_part) && Field_Follows(text, next);
      if (!skipped) return at;
      current = nullptr;
    }
    at = next;
  }
  return text.size();
}

bool Begins_With_Header(std::string_view text) {
  return !Field_Name(text).empty();
}

bool Begins_With_Mail_Headers(std::string_view text) {
  int broken = 0;
  int of_mail = 0;
  for (std::size_t at = 0; at < text.size(); at = Next_Line(text, at)) {
    const std::string_view line = First_Line(text.substr(at));
    if (line.empty()) break;
    if (line[0] == ' ' || line[0] == '\t') continue;
    const std::string_view name = Field_Name(line);
    if (name.empty() && ++broken > 1) return false;
    of_mail += std::any_of(mail_names.begin(), mail_names.end(),
                           [&](std::string_view field) { return Same_Name(field, name); })
                   ? 1
                   : 0;
  }
  return of_mail > broken;
}

std::string_view Without_Lead_In(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  text.remove_prefix(std::min(text.find_first_not_of("\r\n"), text.size()));
  return text;
}

std::string_view First_Line(std::string_view text) {
  std::string_view line = text.substr(0, std::min(text.find('\n'), text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool Same_Name(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char one, char other) { return Lower(one) == Lower(other); });
}

}  // namespace tidyfold
