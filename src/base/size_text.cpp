#include "base/size_text.h"

#include <cstdio>

namespace tidyfold {

std::string Format_Size(std::int64_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  double size = static_cast<double>(bytes) / 1024;
  const char* unit = "KB";
  for (const char* larger : {"MB", "GB", "TB"}) {
    if (size < 1000) break;
    size /= 1024;
    unit = larger;
  }
  char text[40];
  std::snprintf(text, sizeof text, "%.1f %s", size, unit);
  return text;
}

}  // namespace tidyfold
