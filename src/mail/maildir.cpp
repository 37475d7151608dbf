#include "mail/maildir.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>

#include "base/file_path.h"
#include "base/text.h"
#include "mail/charset.h"
#include "mail/local_date.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

// In front of "2,"; others replace the colon on file systems that do not allow it.
constexpr std::string_view info_marks = ":;!";

// Of RFC 3501: base64 with a comma for the slash, without padding.
std::string Shifted(const std::u16string& units) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,";
  std::string text = "&";
  std::uint32_t bits = 0;
  int count = 0;
  for (const char16_t unit : units) {
    bits = (bits << 16) | unit;
    for (count += 16; count >= 6; count -= 6) text += digits[(bits >> (count - 6)) & 63];
  }
  if (count > 0) text += digits[(bits << (6 - count)) & 63];
  return text + "-";
}

}  // namespace

std::string From_Maildir_Name(const std::string& name) {
  for (std::size_t at = name.find('&'); at != std::string::npos; at = name.find('&', at + 1)) {
    const std::size_t end = std::min(
        name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,", at + 1),
        name.size());
    if (end == name.size() || name[end] != '-') return name;
  }
  return name.find('&') == std::string::npos ? name : To_Utf8(name, "UTF-7-IMAP");
}

std::string To_Maildir_Name(const std::string& name) {
  std::string text;
  std::u16string others;
  const auto end_others = [&] {
    if (!others.empty()) text += Shifted(std::exchange(others, {}));
  };
  for (const char16_t unit : File_Path(Valid_Utf8(name)).u16string()) {
    if (unit < ' ' || unit >= 0x7F) {
      others += unit;
      continue;
    }
    end_others();
    text += static_cast<char>(unit);
    if (unit == '&') text += '-';
  }
  end_others();
  return text;
}

Maildir_Name Split_Maildir_Name(std::string_view name) {
  std::array<std::size_t, info_marks.size()> found;
  found.fill(std::string_view::npos);
  for (std::size_t at = name.rfind("2,"); at != std::string_view::npos && at > 0;
       at = name.rfind("2,", at - 1)) {
    const std::size_t mark = info_marks.find(name[at - 1]);
    if (mark == std::string_view::npos || found[mark] != std::string_view::npos) continue;
    found[mark] = at - 1;
    if (mark == 0) break;
  }
  for (const std::size_t info : found)
    if (info != std::string_view::npos) return {name.substr(0, info), name.substr(info + 3)};
  return {name, {}};
}

Date Delivery_In(std::string_view name) {
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), seconds);
  const bool is_time = error == std::errc() && end != name.data() + name.size() && *end == '.' && seconds > 0;
  return is_time ? Local_Date(seconds) : no_date;
}

fs::path Maildir_Message::Path(const fs::path& maildir) const {
  return maildir / (is_new ? "new" : "cur") / name;
}

bool Is_Maildir(const fs::path& directory) {
  std::error_code error;
  return fs::is_directory(directory / "cur", error) || fs::is_directory(directory / "new", error);
}

std::vector<std::string> Names_Of_Maildir(std::string_view directory) {
  std::vector<std::string> names;
  for (std::size_t at = 1; at < directory.size();) {
    const std::size_t end = std::min(directory.find('.', at), directory.size());
    if (end > at) names.push_back(From_Maildir_Name(std::string(directory.substr(at, end - at))));
    at = end + 1;
  }
  return names;
}

Maildir_Message Read_Maildir_Name(std::string name, bool is_new) {
  Maildir_Message message;
  message.is_new = is_new;
  if (!is_new) {
    const std::string_view marks = Split_Maildir_Name(name).marks;
    message.seen = marks.find('S') != std::string_view::npos;
    message.answered = marks.find('R') != std::string_view::npos;
    message.flagged = marks.find('F') != std::string_view::npos;
    message.trashed = marks.find('T') != std::string_view::npos;
  }
  message.delivered = Delivery_In(name);
  message.name = std::move(name);
  return message;
}

void Set_Maildir_Marks(const Maildir_Message& message, New_Item& item) {
  item.unread = !message.seen;
  item.flagged = message.flagged;
  item.answered = message.answered;
  if (item.received == no_date && message.delivered != no_date)
    item.received = item.last_modified = message.delivered;
}

}  // namespace tidyfold
