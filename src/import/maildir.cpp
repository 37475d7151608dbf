#include "import/maildir.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <set>
#include <system_error>
#include <utility>

#include "import/charset.h"
#include "import/import.h"
#include "import/local_date.h"

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

std::vector<std::string> Names_Of_Sub_Folder(const std::string& directory) {
  if (!directory.starts_with('.')) return {directory};
  std::vector<std::string> names;
  for (std::size_t at = 1; at <= directory.size();) {
    const std::size_t end = std::min(directory.find('.', at), directory.size());
    names.push_back(Folder_Name(directory.substr(at, end - at)));
    at = end + 1;
  }
  return names;
}

std::vector<std::string> Entries(const fs::path& directory, const std::function<void()>& tick) {
  std::vector<std::string> names;
  std::error_code error;
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    names.push_back(entry->path().filename().string());
    tick();
  }
  if (error) {
    throw Import_Error(directory.string() + ": the folder cannot be listed (" + error.message() +
                       "). Check that you may read it.");
  }
  std::sort(names.begin(), names.end());
  return names;
}

void List(const fs::path& directory, const std::vector<std::string>& names, const std::function<void()>& tick,
          std::set<fs::path>& listed, std::vector<Maildir_Folder>& folders) {
  // Links may form cycles.
  std::error_code error;
  if (!listed.insert(fs::canonical(directory, error)).second) return;
  Maildir_Folder folder{directory, names, {}};
  for (const bool is_new : {false, true}) {
    for (std::string& name : Entries(directory / (is_new ? "new" : "cur"), tick)) {
      if (!name.starts_with('.')) folder.messages.push_back(Read_Maildir_Name(std::move(name), is_new));
    }
  }
  // Names begin with the time of delivery.
  std::stable_sort(
      folder.messages.begin(), folder.messages.end(),
      [](const Maildir_Message& left, const Maildir_Message& right) { return left.name < right.name; });
  folders.push_back(std::move(folder));
  for (const std::string& entry : Entries(directory, tick)) {
    if (entry == "cur" || entry == "new" || entry == "tmp" || !Is_Maildir(directory / entry)) continue;
    std::vector<std::string> below = names;
    for (std::string& name : Names_Of_Sub_Folder(entry)) below.push_back(std::move(name));
    List(directory / entry, below, tick, listed, folders);
  }
}

}  // namespace

fs::path Maildir_Message::Path(const Maildir_Folder& folder) const {
  return folder.directory / (is_new ? "new" : "cur") / name;
}

bool Is_Maildir(const fs::path& directory) {
  std::error_code error;
  return fs::is_directory(directory / "cur", error) && fs::is_directory(directory / "new", error);
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

std::vector<Maildir_Folder> List_Maildir(const fs::path& directory, const std::function<void()>& tick) {
  std::vector<Maildir_Folder> folders;
  std::set<fs::path> listed;
  List(directory, {}, tick, listed, folders);
  return folders;
}

}  // namespace tidyfold
