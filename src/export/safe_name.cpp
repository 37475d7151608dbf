#include "export/safe_name.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "base/text.h"

namespace tidyfold {
namespace {

// Devices on Windows (https://learn.microsoft.com/windows/win32/fileio/naming-a-file), and the parts of a
// Maildir.
constexpr std::array<std::string_view, 25> reserved = {
    "CON",  "PRN",  "AUX",  "NUL",  "COM1", "COM2", "COM3", "COM4", "COM5", "COM6", "COM7", "COM8", "COM9",
    "LPT1", "LPT2", "LPT3", "LPT4", "LPT5", "LPT6", "LPT7", "LPT8", "LPT9", "CUR",  "NEW",  "TMP"};

bool Is_Refused(char c) {
  constexpr std::string_view marks = "/\\:*?\"<>|";
  return static_cast<unsigned char>(c) < ' ' || c == 0x7F || marks.find(c) != std::string_view::npos;
}

}  // namespace

std::string Safe_Name(std::string_view name, std::size_t longest) {
  std::string safe = Valid_Utf8(name);
  std::replace_if(safe.begin(), safe.end(), Is_Refused, '_');
  if (safe.size() > longest) {
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(safe[end]) & 0xC0) == 0x80) --end;
    safe.resize(end);
  }
  const std::size_t begin = safe.find_first_not_of(' ');
  safe.erase(0, std::min(begin, safe.size()));
  while (safe.ends_with(' ') || safe.ends_with('.')) safe.pop_back();
  // Hidden, and in a tree of Maildirs a name of its own kind.
  if (safe.starts_with('.')) safe[0] = '_';
  const std::string stem = Upper_Case(safe.substr(0, safe.find('.')));
  if (safe.empty() || std::find(reserved.begin(), reserved.end(), stem) != reserved.end())
    safe.insert(0, "_");
  // Mail programs keep mail in directories of such names.
  for (const std::string_view suffix : {".mbox", ".sbd", ".directory"})
    if (safe.ends_with(suffix)) safe += '_';
  return safe;
}

std::string Free_Name(const std::string& name, const std::string& end,
                      const std::function<bool(const std::string& name)>& is_taken) {
  std::string candidate = name + end;
  for (int number = 2; is_taken(candidate); ++number) {
    std::ostringstream numbered;
    numbered << name << " (" << number << ")" << end;
    candidate = numbered.str();
  }
  return candidate;
}

}  // namespace tidyfold
