#include "base/replace_file.h"

namespace tidyfold {

std::filesystem::path Behind_Links(std::filesystem::path file) {
  constexpr int most_links = 40;  // what common systems follow
  std::error_code error;
  for (int link = 0; link < most_links && std::filesystem::is_symlink(file, error); ++link) {
    const std::filesystem::path next = std::filesystem::read_symlink(file, error);
    if (error) break;
    file = file.parent_path() / next;  // an absolute one replaces the folder
  }
  return file;
}

}  // namespace tidyfold
