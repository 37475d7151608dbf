#include "help/file_names.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

namespace tidyfold {

namespace {

std::filesystem::path Path_Of(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string Utf8(const std::u8string& text) {
  return {text.begin(), text.end()};
}

}  // namespace

bool FileExists(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(Path_Of(path), error);
}

std::string GetBaseName(const std::string& path) {
  const std::string name = Utf8(Path_Of(path).filename().u8string());
  return name.substr(0, name.rfind('.'));
}

std::string GetExtensionName(const std::string& path) {
  const std::string name = Utf8(Path_Of(path).filename().u8string());
  const auto point = name.rfind('.');
  return point == std::string::npos ? std::string{} : name.substr(point + 1);
}

std::string BuildPath(const std::string& folder, const std::string& name) {
  return Utf8((Path_Of(folder) / Path_Of(name)).u8string());
}

std::optional<std::string> File_Text(const std::string& path) {
  std::ifstream stream(Path_Of(path), std::ios::binary);
  if (!FileExists(path) || !stream) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::string File_URL(const std::string& path) {
  static constexpr std::array<char, 16> digits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                                  '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
  constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:";
  const std::string generic = Utf8(Path_Of(path).generic_u8string());
  // A drive letter needs a slash in front.
  std::string address = generic.starts_with('/') ? "file://" : "file:///";
  for (const char c : generic) {
    const auto byte = static_cast<unsigned char>(c);
    if (plain.find(c) != std::string_view::npos) {
      address += c;
    } else {
      address += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return address;
}

}  // namespace tidyfold
