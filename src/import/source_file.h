// Reading a file of any size without holding it in memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace tidyfold {

class Source_File {
 public:
  // Throws Import_Error where the file cannot be opened.
  explicit Source_File(const std::filesystem::path& path);

  // As it was on opening.
  std::int64_t Size() const { return size_; }
  // The bytes from `at` on, as many as there are up to `length`. Throws Import_Error where they cannot be
  // read.
  std::string Read(std::int64_t at, std::int64_t length);
  // What is at hand from `at` on: at least `minimum` bytes, fewer only at the end of the file. Valid until
  // the next call.
  std::string_view View(std::int64_t at, std::int64_t minimum);

 private:
  void Fill(std::int64_t at, std::int64_t length, std::string& bytes);

  std::filesystem::path path_;
  std::ifstream stream_;
  std::int64_t size_ = 0;
  std::string window_;
  std::int64_t window_at_ = 0;
};

}  // namespace tidyfold
