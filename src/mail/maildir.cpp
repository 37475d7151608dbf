#include "mail/maildir.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>

#include "mail/charset.h"
#include "mail/local_date.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

// Decodes modified UTF-7 ("Entw&APw-rfe"); any other name stays as it is.
std::string Folder_Name(const std::string& name) {
  for (std::size_t at = name.find('&'); at != std::string::npos; at = name.find('&', at + 1)) {
    const std::size_t end = std::min(
        name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,", at + 1),
        name.size());
    if (end == name.size() || name[end] != '-') return name;
  }
  return name.find('&') == std::string::npos ? name : To_Utf8(name, "UTF-7-IMAP");
}

}  // namespace

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
    if (end > at) names.push_back(Folder_Name(std::string(directory.substr(at, end - at))));
    at = end + 1;
  }
  return names;
}

Maildir_Message Read_Maildir_Name(std::string name, bool is_new) {
  Maildir_Message message;
  message.is_new = is_new;
  // Another character replaces the colon on file systems that do not allow it.
  for (const std::string_view mark : {":2,", ";2,", "!2,"}) {
    const std::size_t info = name.rfind(mark);
    if (info == std::string::npos || is_new) continue;
    const std::string_view flags = std::string_view(name).substr(info + mark.size());
    message.seen = flags.find('S') != std::string_view::npos;
    message.answered = flags.find('R') != std::string_view::npos;
    message.flagged = flags.find('F') != std::string_view::npos;
    message.trashed = flags.find('T') != std::string_view::npos;
    break;
  }
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), seconds);
  if (error == std::errc() && end != name.data() + name.size() && *end == '.' && seconds > 0) {
    message.delivered = Local_Date(seconds);
  }
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
