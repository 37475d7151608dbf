#include "import/apple_message.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace tidyfold {
namespace {

constexpr std::uint64_t read_mark = 1, deleted_mark = 2, answered_mark = 4, flagged_mark = 16;

// The number behind "<key>flags</key><integer>".
std::uint64_t Flags(std::string_view list) {
  const std::size_t key = list.find("<key>flags</key>");
  if (key == std::string_view::npos) return 0;
  constexpr std::string_view mark = "<integer>";
  const std::size_t value = list.find(mark, key);
  if (value == std::string_view::npos) return 0;
  std::uint64_t flags = 0;
  std::from_chars(list.data() + value + mark.size(), list.data() + list.size(), flags);
  return flags;
}

}  // namespace

Apple_Message Split_Apple_Frame(std::string text) {
  Apple_Message apple;
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  const std::size_t begin = text.find('\n');
  if (error != std::errc() || begin == std::string::npos) {
    apple.message = std::move(text);
    return apple;
  }
  const std::size_t whole = text.size() - (begin + 1);
  // The list stands where the length says, or else where it begins.
  const auto list_at = [&](std::size_t at) {
    const std::string_view rest = std::string_view(text).substr(at);
    return rest.empty() || rest.starts_with("<?xml") || rest.starts_with("<!DOCTYPE plist");
  };
  std::size_t list = begin + 1 + std::min(length, whole);
  if (!list_at(list)) list = std::min(text.rfind("\n<?xml"), text.size() - 1) + 1;
  const std::uint64_t flags = Flags(std::string_view(text).substr(list));
  apple.read = (flags & read_mark) != 0;
  apple.deleted = (flags & deleted_mark) != 0;
  apple.answered = (flags & answered_mark) != 0;
  apple.flagged = (flags & flagged_mark) != 0;
  apple.message = text.substr(begin + 1, list - begin - 1);
  return apple;
}

}  // namespace tidyfold
