#include "import/mbox_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "import/mail_headers.h"
#include "import/mime_message.h"

namespace tidyfold {
namespace {

constexpr std::string_view mark = "From ";
constexpr std::int64_t longest_separator = 1024;
constexpr std::int64_t usual_header = std::int64_t{16} * 1024;
constexpr std::int64_t longest_header = std::int64_t{256} * 1024;
constexpr std::array<std::string_view, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

// "... Aug 23 02:32:53 ...", followed by zone and year in any order.
bool Has_Date(std::string_view line) {
  for (const std::string_view month : months) {
    for (std::size_t at = line.find(month); at != std::string_view::npos; at = line.find(month, at + 1)) {
      std::size_t next = at + 3;
      while (next < line.size() && (line[next] == ' ' || Is_Digit(line[next]))) ++next;
      if (next >= 2 && next + 2 < line.size() && line[next] == ':' && Is_Digit(line[next - 1]) &&
          Is_Digit(line[next + 1])) {
        return true;
      }
    }
  }
  return false;
}

std::string_view Line(std::string_view text) {
  std::string_view line = text.substr(0, std::min(text.find('\n'), text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// The end of the blank line behind the headers; npos if there is none.
std::size_t Header_End(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) break;
    if (Line(text.substr(at)).empty()) return end + 1;
    at = end + 1;
  }
  return std::string_view::npos;
}

std::optional<std::int64_t> Content_Length(std::string_view headers) {
  constexpr std::string_view name = "content-length:";
  for (std::size_t at = 0; at < headers.size();) {
    const std::string_view line = Line(headers.substr(at));
    if (line.size() > name.size() &&
        std::equal(name.begin(), name.end(), line.begin(),
                   [](char expected, char c) { return (c >= 'A' && c <= 'Z' ? c + 32 : c) == expected; })) {
      std::string_view number = line.substr(name.size());
      number.remove_prefix(std::min(number.find_first_not_of(" \t"), number.size()));
      std::int64_t length = 0;
      const auto result = std::from_chars(number.data(), number.data() + number.size(), length);
      if (result.ec != std::errc() || length < 0) return std::nullopt;
      return length;
    }
    const std::size_t end = headers.find('\n', at);
    if (end == std::string_view::npos) break;
    at = end + 1;
  }
  return std::nullopt;
}

}  // namespace

bool Begins_With_Separator(std::string_view text, bool after_blank_line) {
  if (!text.starts_with(mark)) return false;
  const std::string_view line = Line(text);
  const std::size_t next = text.find('\n');
  if (next == std::string_view::npos) return false;
  const std::string_view following = text.substr(next + 1);
  if (!Begins_With_Header(following) && !following.starts_with(">From ")) return false;
  // Some writers put only "-" there, some only a sender.
  const std::string_view sender = line.substr(mark.size(), line.find(' ', mark.size()) - mark.size());
  if (Has_Date(line) || (sender == "-" && line.size() <= mark.size() + 2)) return true;
  return after_blank_line && sender.find('@') != std::string_view::npos;
}

bool Mbox_Reader::Is_Separator(std::int64_t at) {
  const std::int64_t before = std::min<std::int64_t>(at, 3);
  const std::string_view text = file_.View(at - before, before + longest_separator);
  const std::string_view behind = text.substr(0, static_cast<std::size_t>(before));
  if (at > 0 && !behind.ends_with('\n')) return false;
  const bool after_blank_line = at == 0 || behind.ends_with("\n\n") || behind.ends_with("\n\r\n");
  return Begins_With_Separator(text.substr(static_cast<std::size_t>(before)), after_blank_line);
}

std::int64_t Mbox_Reader::Next_Separator(std::int64_t from) {
  constexpr std::string_view line_mark = "\nFrom ";
  // The line break before the first line counts too.
  std::int64_t at = std::max<std::int64_t>(from - 1, 0);
  while (at < file_.Size()) {
    const std::string_view text = file_.View(at, longest_separator);
    const std::size_t found = text.find(line_mark);
    if (found == std::string_view::npos) {
      tick_();
      at += std::max<std::int64_t>(static_cast<std::int64_t>(text.size() - line_mark.size()), 1);
      if (at + static_cast<std::int64_t>(line_mark.size()) >= file_.Size()) break;
      continue;
    }
    at += static_cast<std::int64_t>(found) + 1;
    if (Is_Separator(at)) return at;
  }
  return file_.Size();
}

std::optional<std::int64_t> Mbox_Reader::End_By_Length(std::int64_t content) {
  missing_.reset();
  std::string_view text = file_.View(content, usual_header);
  std::size_t header_end = Header_End(text);
  if (header_end == std::string_view::npos) {
    text = file_.View(content, longest_header);
    header_end = Header_End(text);
  }
  if (header_end == std::string_view::npos) return std::nullopt;
  const std::optional<std::int64_t> length = Content_Length(text.substr(0, header_end));
  if (!length) return std::nullopt;
  const std::int64_t body = content + static_cast<std::int64_t>(header_end);
  if (*length > file_.Size() - body) {
    missing_ = *length - (file_.Size() - body);
    return std::nullopt;
  }
  // The blank line between two messages belongs to neither.
  const std::int64_t end = body + *length;
  std::string_view rest = file_.View(end, 4).substr(0, 4);
  std::int64_t next = end;
  while (!rest.empty() && (rest.front() == '\n' || rest.front() == '\r')) {
    rest.remove_prefix(1);
    ++next;
  }
  if (next < file_.Size() && !Is_Separator(next)) return std::nullopt;
  ++lengths_right_;
  return end;
}

std::optional<Mbox_Message> Mbox_Reader::Next() {
  while (at_ < file_.Size()) {
    const std::string_view first = file_.View(at_, 1).substr(0, 1);
    if (first != "\n" && first != "\r") break;
    ++at_;
  }
  if (at_ >= file_.Size()) return std::nullopt;
  if (missing_) ++lengths_too_long_;

  Mbox_Message message;
  message.begin = at_;
  const std::string_view separator = file_.View(at_, longest_separator);
  message.content = at_ + static_cast<std::int64_t>(std::min(separator.find('\n'), separator.size() - 1)) + 1;
  content_ = message.content;
  if (const auto end = End_By_Length(message.content)) {
    message.end = *end;
    message.by_length = true;
  } else {
    message.end = Next_Separator(message.content);
  }
  at_ = message.end;
  return message;
}

Mbox_Cut Mbox_Reader::Cut() {
  if (content_ == 0) return Mbox_Cut::None;
  if (!file_.View(file_.Size() - 1, 1).ends_with('\n')) return Mbox_Cut::Line;
  const std::string_view text = file_.View(content_, longest_header);
  const std::size_t header_end = Header_End(text);
  if (header_end == std::string_view::npos &&
      static_cast<std::int64_t>(text.size()) == file_.Size() - content_) {
    return Mbox_Cut::Headers;
  }
  if (!missing_ || lengths_too_long_ > 0) return Mbox_Cut::None;
  if (lengths_right_ > 0) return Mbox_Cut::Length;
  // A file whose CR LF became LF lacks exactly one byte per line.
  std::int64_t lines = 0;
  for (std::int64_t at = content_ + static_cast<std::int64_t>(header_end);
       at < file_.Size() && lines < *missing_;) {
    const std::string_view part = file_.View(at, 1);
    lines += std::count(part.begin(), part.end(), '\n');
    at += static_cast<std::int64_t>(part.size());
    tick_();
  }
  return lines < *missing_ ? Mbox_Cut::Length : Mbox_Cut::None;
}

std::string Mbox_Reader::Separator(const Mbox_Message& message) {
  return std::string(Line(file_.View(message.begin, longest_separator)));
}

std::string Mbox_Reader::Text(const Mbox_Message& message) {
  std::string text = file_.Read(message.content, message.end - message.content);
  const std::size_t body = std::min(Header_End(text), text.size());
  if (!message.by_length) {
    if (text.ends_with("\n\r\n")) {
      text.resize(text.size() - 2);
    } else if (text.ends_with("\n\n") && text.size() > body) {
      text.resize(text.size() - 1);
    }
  } else if (text.find("\nFrom ", std::max<std::size_t>(body, 1) - 1) != std::string::npos) {
    return text;  // a writer that leaves such lines alone quotes none
  }
  std::size_t kept = body;
  for (std::size_t at = body; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
    const std::size_t quotes = text.find_first_not_of('>', at);
    const bool quoted =
        text[at] == '>' && quotes < end && std::string_view(text).substr(quotes).starts_with(mark);
    if (quoted) ++at;
    std::copy(text.begin() + static_cast<std::ptrdiff_t>(at), text.begin() + static_cast<std::ptrdiff_t>(end),
              text.begin() + static_cast<std::ptrdiff_t>(kept));
    kept += end - at;
    at = end;
  }
  text.resize(kept);
  return text;
}

}  // namespace tidyfold
