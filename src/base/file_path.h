// Paths are UTF-8 text inside the program; Windows knows others.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tidyfold {

inline std::filesystem::path File_Path(std::string_view utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace tidyfold
