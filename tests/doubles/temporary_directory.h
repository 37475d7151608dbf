// A directory of a test's own, and the files in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tidyfold {

class Temporary_Directory {
 public:
  explicit Temporary_Directory(const std::filesystem::path& root = std::filesystem::temp_directory_path()) {
    std::random_device random;
    const auto name = "tidyfold test-" + std::to_string(random()) + std::to_string(random());
    path_ = root / name;
    if (!std::filesystem::create_directory(path_)) throw std::runtime_error("no directory: " + name);
  }
  Temporary_Directory(const Temporary_Directory&) = delete;
  Temporary_Directory& operator=(const Temporary_Directory&) = delete;
  ~Temporary_Directory() { std::filesystem::remove_all(path_); }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

inline std::string Bytes_Of(const std::filesystem::path& file) {
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

// Makes the folders above the file, too.
inline std::filesystem::path Write_Bytes(const std::filesystem::path& file, std::string_view bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
  return file;
}

}  // namespace tidyfold
