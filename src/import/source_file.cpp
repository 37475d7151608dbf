#include "import/source_file.h"

#include <algorithm>

#include "import/import.h"

namespace tidyfold {
namespace {

constexpr std::int64_t window_size = 1 << 20;

}  // namespace

Source_File::Source_File(const std::filesystem::path& path) : path_(path), stream_(path, std::ios::binary) {
  if (stream_) stream_.seekg(0, std::ios::end);
  size_ = stream_ ? static_cast<std::int64_t>(stream_.tellg()) : -1;
  if (size_ < 0) {
    throw Import_Error(
        path.string() +
        ": the file cannot be opened. Check that you may read it and that no other program holds it.");
  }
}

std::string Source_File::Read(std::int64_t at, std::int64_t length) {
  if (length <= window_size) return std::string(View(at, length).substr(0, static_cast<std::size_t>(length)));
  std::string bytes;
  Fill(at, length, bytes);
  return bytes;
}

std::string Source_File::Peek(std::int64_t at, std::int64_t length) {
  length = std::clamp<std::int64_t>(size_ - at, 0, length);
  const std::int64_t in_window = at - window_at_;
  if (in_window >= 0 && in_window + length <= static_cast<std::int64_t>(window_.size()))
    return window_.substr(static_cast<std::size_t>(in_window), static_cast<std::size_t>(length));
  std::string bytes;
  Fill(at, length, bytes);
  return bytes;
}

std::string_view Source_File::View(std::int64_t at, std::int64_t minimum) {
  const std::int64_t end = std::min(at + minimum, size_);
  if (at >= end) return {};
  if (at < window_at_ || end > window_at_ + static_cast<std::int64_t>(window_.size())) {
    // Keeps a few bytes before `at`: callers often look back.
    window_at_ = std::max<std::int64_t>(at - 16, 0);
    Fill(window_at_, std::max(window_size, minimum + 16), window_);
  }
  return std::string_view(window_).substr(static_cast<std::size_t>(at - window_at_));
}

void Source_File::Fill(std::int64_t at, std::int64_t length, std::string& bytes) {
  length = std::clamp<std::int64_t>(size_ - at, 0, length);
  bytes.resize(static_cast<std::size_t>(length));
  stream_.clear();
  stream_.seekg(at);
  if (!stream_.read(bytes.data(), static_cast<std::streamsize>(length))) {
    throw Import_Error(path_.string() + ": the file cannot be read at byte " + std::to_string(at) +
                       ". Copy it to another disk first, and import the copy.");
  }
}

std::string Read_Text_File(const std::filesystem::path& path) {
  constexpr std::int64_t largest = 512LL << 20;
  Source_File file(path);
  if (file.Size() > largest)
    throw Import_Error(path.string() +
                       ": the file is larger than 512 MB. Divide it in the program that it came from.");
  return file.Read(0, file.Size());
}

}  // namespace tidyfold
