#include "base/size_text.h"

#include <clocale>
#include <cstdio>

namespace tidyfold {

std::string Format_Size(std::int64_t bytes) {
  constexpr double unit_size = 1024;
  if (bytes < 1024) return Format_Count(bytes) + (bytes == 1 ? " byte" : " bytes");
  double size = static_cast<double>(bytes) / unit_size;
  const char* unit = "KB";
  for (const char* larger : {"MB", "GB", "TB"}) {
    // What would be written as 1024.0 is one of the next unit.
    if (size < unit_size - 0.05) break;
    size /= unit_size;
    unit = larger;
  }
  char text[40];
  std::snprintf(text, sizeof text, "%.1f %s", size, unit);  // with the locale's decimal point
  return text;
}

std::string Format_Count(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::lconv* const format = std::localeconv();
  const std::string separator = format->thousands_sep;
  if (separator.empty()) return text;
  const char* group = format->grouping;
  const std::size_t first_digit = number < 0 ? 1 : 0;
  std::size_t at = text.size();
  // A grouping lists the sizes of groups from the right; its last element goes on for ever.
  while (*group > 0 && *group < 127 && at > first_digit + static_cast<std::size_t>(*group)) {
    at -= static_cast<std::size_t>(*group);
    text.insert(at, separator);
    if (group[1] != 0) ++group;
  }
  return text;
}

}  // namespace tidyfold
