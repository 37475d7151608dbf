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
  // Throws Import_Error if the file cannot be opened.
  explicit Source_File(const std::filesystem::path& path);

  // The size when the file was opened.
  std::int64_t Size() const { return size_; }
  // Up to `length` bytes from `at` on. Throws Import_Error if they cannot be read.
  std::string Read(std::int64_t at, std::int64_t length);
  // The same for a few bytes anywhere, which does not move the buffer.
  std::string Peek(std::int64_t at, std::int64_t length);
  // The buffered bytes from `at` on: at least `minimum`, fewer only at the end of the file. Valid until the
  // next call.
  std::string_view View(std::int64_t at, std::int64_t minimum);

 private:
  void Fill(std::int64_t at, std::int64_t length, std::string& bytes);

  std::filesystem::path path_;
  std::ifstream stream_;
  std::int64_t size_ = 0;
  std::string window_;
  std::int64_t window_at_ = 0;
};

// A whole file of at most 512 MB. Throws Import_Error if it cannot be read or is larger.
std::string Read_Text_File(const std::filesystem::path& path);

}  // namespace tidyfold
