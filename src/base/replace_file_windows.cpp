#include <fstream>
#include <random>

#include "base/replace_file.h"

namespace tidyfold {

// The system keeps no permissions and no promise of order here; the program's settings lie in the registry.
std::error_code Replace_File(const std::filesystem::path& file, std::string_view content) {
  const std::filesystem::path target = Behind_Links(file);
  std::error_code error;
  if (!target.parent_path().empty()) std::filesystem::create_directories(target.parent_path(), error);
  if (error) return error;
  std::filesystem::path draft = target;
  draft += "." + std::to_string(std::random_device{}());
  std::ofstream stream(draft, std::ios::binary | std::ios::trunc);
  stream.write(content.data(), static_cast<std::streamsize>(content.size()));
  stream.close();
  if (stream) {
    std::filesystem::rename(draft, target, error);
  } else {
    error = std::make_error_code(std::errc::io_error);
  }
  std::error_code ignored;
  if (error) std::filesystem::remove(draft, ignored);
  return error;
}

}  // namespace tidyfold
