#include "import/mbox_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "mail/mail_headers.h"

namespace tidyfold {
namespace {

constexpr std::string_view mark = "From ";
constexpr std::int64_t longest_separator = 1024;
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

// "... Fri Aug 23 02:32:53 2002" at the end of the line, with a zone before or behind the year. Hardly any
// sentence ends like that.
bool Ends_With_Full_Date(std::string_view line) {
  constexpr std::array<std::string_view, 7> days = {" Mon ", " Tue ", " Wed ", " Thu ",
                                                    " Fri ", " Sat ", " Sun "};
  constexpr std::size_t longest_date = 40;
  std::string_view date = line.substr(line.size() - std::min(line.size(), longest_date));
  std::size_t at = std::string_view::npos;
  for (const std::string_view day : days) at = std::min(at, date.find(day));
  if (at == std::string_view::npos) return false;
  date.remove_prefix(at + 5);
  const bool month = std::find(months.begin(), months.end(), date.substr(0, 3)) != months.end();
  if (!month || !Has_Date(date)) return false;
  date.remove_prefix(std::min(date.find(' ', date.find(':')), date.size()));
  bool year = false;
  for (std::size_t begin = 0; (begin = date.find_first_not_of(' ', begin)) != std::string_view::npos;) {
    const std::string_view word = date.substr(begin, date.find(' ', begin) - begin);
    const bool number = word.find_first_not_of("0123456789") == std::string_view::npos;
    year = year || (number && word.size() == 4);
    if (!number && word.find_first_not_of("+-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ") != std::string_view::npos)
      return false;
    begin += word.size();
  }
  return year;
}

bool Has_Header(std::string_view text) {
  Mail_Headers headers;
  headers.Read(text);
  return !headers.Empty();
}

std::optional<std::int64_t> Content_Length(std::string_view line) {
  constexpr std::string_view name = "content-length:";
  if (!Same_Name(line.substr(0, name.size()), name)) return std::nullopt;
  std::string_view number = line.substr(name.size());
  number.remove_prefix(std::min(number.find_first_not_of(" \t"), number.size()));
  std::int64_t length = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), length);
  if (result.ec != std::errc() || length < 0) return std::nullopt;
  return length;
}

}  // namespace

std::size_t Mbox_Header_End(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) break;
    if (First_Line(text.substr(at)).empty()) return end + 1;
    at = end + 1;
  }
  return std::string_view::npos;
}

bool Begins_With_Separator(std::string_view text, bool after_blank_line) {
  if (!text.starts_with(mark)) return false;
  const std::string_view line = First_Line(text);
  const std::size_t next = text.find('\n');
  if (next == std::string_view::npos) return false;
  const std::string_view following = text.substr(next + 1);
  // Then a message begins here even if its header is broken or, behind a blank line, missing.
  if (Ends_With_Full_Date(line) && (after_blank_line || Has_Header(following))) return true;
  if (!Begins_With_Header(following) && !following.starts_with(">From ")) return false;
  // Some writers put only "-" there, some only a sender.
  const std::string_view sender = line.substr(mark.size(), line.find(' ', mark.size()) - mark.size());
  if (Has_Date(line) || (sender == "-" && line.size() <= mark.size() + 2)) return true;
  return after_blank_line && sender.find('@') != std::string_view::npos;
}

bool Mbox_Reader::Is_Separator(std::int64_t at) {
  const std::int64_t before = std::min<std::int64_t>(at, 3);
  const auto check = [&](std::string_view text) {
    const std::string_view behind = text.substr(0, static_cast<std::size_t>(before));
    if (at > 0 && !behind.ends_with('\n')) return false;
    const bool after_blank_line = at == 0 || behind.ends_with("\n\n") || behind.ends_with("\n\r\n");
    return Begins_With_Separator(text.substr(static_cast<std::size_t>(before)), after_blank_line);
  };
  return check(file_.Peek(at - before, before + longest_separator));
}

std::int64_t Mbox_Reader::Line_End(std::int64_t at) {
  while (at < file_.Size()) {
    const std::string_view text = file_.View(at, longest_separator);
    const std::size_t end = text.find('\n');
    if (end != std::string_view::npos) return at + static_cast<std::int64_t>(end) + 1;
    at += static_cast<std::int64_t>(text.size());
    tick_();
  }
  return file_.Size();
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

Mbox_Reader::Header Mbox_Reader::Read_Header(std::int64_t content) {
  Header header;
  std::int64_t at = content;
  while (at < file_.Size()) {
    const std::string_view text = file_.View(at, longest_separator);
    const std::string_view line = First_Line(text.substr(0, longest_separator));
    if (line.empty() && !text.empty()) {
      header.ended = true;
      header.end = Line_End(at);
      return header;
    }
    if (!header.length) header.length = Content_Length(line);
    if (line.starts_with(mark) && Is_Separator(at)) break;
    at = Line_End(at);
  }
  header.end = at;
  return header;
}

std::optional<std::int64_t> Mbox_Reader::End_By_Length(const Header& header) {
  missing_ = 0;
  if (!header.ended || !header.length) return std::nullopt;
  if (*header.length > file_.Size() - header.end) {
    missing_ = *header.length - (file_.Size() - header.end);
    return std::nullopt;
  }
  // The blank line between two messages belongs to neither.
  const std::int64_t end = header.end + *header.length;
  const std::string rest = file_.Peek(end, 4);
  const std::int64_t next =
      end + static_cast<std::int64_t>(std::min(rest.find_first_not_of("\r\n"), rest.size()));
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
  if (missing_ > 0) ++lengths_too_long_;

  Mbox_Message message;
  message.begin = at_;
  message.content = Line_End(at_);
  const Header header = Read_Header(message.content);
  if (const auto end = End_By_Length(header)) {
    message.end = *end;
    message.by_length = true;
  } else {
    message.end = header.ended ? Next_Separator(header.end) : header.end;
  }
  at_ = message.end;
  if (at_ == file_.Size()) message.cut = Cut(header);
  return message;
}

Mbox_Cut Mbox_Reader::Cut(const Header& header) {
  const bool line_ended = file_.Peek(file_.Size() - 1, 1) == "\n";
  if (!header.ended) return Mbox_Cut::Header;
  if (missing_ > 0 && !line_ended) return Mbox_Cut::Length;
  if (!line_ended) return Mbox_Cut::Line;
  if (missing_ == 0 || lengths_too_long_ > 0 || lengths_right_ == 0) return Mbox_Cut::None;
  // A file whose CR LF became LF lacks exactly one byte per line.
  std::int64_t lines = 0;
  for (std::int64_t at = header.end; at < file_.Size() && lines < missing_; at = Line_End(at)) ++lines;
  return lines < missing_ ? Mbox_Cut::Length : Mbox_Cut::None;
}

std::string Mbox_Reader::Separator(const Mbox_Message& message) {
  return std::string(First_Line(file_.View(message.begin, longest_separator)));
}

std::string Mbox_Reader::Text(const Mbox_Message& message) {
  std::string text = file_.Read(message.content, message.end - message.content);
  const std::size_t body = std::min(Mbox_Header_End(text), text.size());
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
