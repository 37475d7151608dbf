#include "stores/sqlite/entry_id.h"

#include <array>
#include <charconv>

namespace tidyfold::sqlite {

namespace {

constexpr char folder_letter = 'F', item_letter = 'I';

std::string Make(char letter, std::int64_t id) {
  std::array<char, 24> text{};
  text[0] = letter;
  const auto end = std::to_chars(text.data() + 1, text.data() + text.size(), id).ptr;
  return {text.data(), end};
}

std::optional<std::int64_t> Read(char letter, std::string_view entry_id) {
  if (entry_id.size() < 2 || entry_id.front() != letter) return std::nullopt;
  std::int64_t id = 0;
  const char* end = entry_id.data() + entry_id.size();
  const auto result = std::from_chars(entry_id.data() + 1, end, id);
  if (result.ec != std::errc() || result.ptr != end || Make(letter, id) != entry_id) return std::nullopt;
  return id;
}

}  // namespace

std::string Folder_Entry_Id(std::int64_t id) {
  return Make(folder_letter, id);
}

std::string Item_Entry_Id(std::int64_t id) {
  return Make(item_letter, id);
}

std::optional<std::int64_t> Folder_Of_Entry_Id(std::string_view entry_id) {
  return Read(folder_letter, entry_id);
}

std::optional<std::int64_t> Item_Of_Entry_Id(std::string_view entry_id) {
  return Read(item_letter, entry_id);
}

}  // namespace tidyfold::sqlite
