#include "import/folder_note.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "import/import.h"
#include "import/source_file.h"
#include "outlook/object_model.h"

namespace tidyfold {

std::optional<Folder_Note> Read_Folder_Note(const std::filesystem::path& directory) {
  constexpr std::int64_t longest = std::int64_t{64} << 10;
  const std::filesystem::path file = directory / folder_note_file;
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
  std::string text;
  try {
    text = Source_File(file).Read(0, longest);
  } catch (const Import_Error&) {
    return std::nullopt;
  }
  const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
  if (!json.is_object()) return std::nullopt;
  const auto name = json.find("name");
  const auto type = json.find("item_type");
  if (name == json.end() || !name->is_string() || type == json.end() || !type->is_number_integer())
    return std::nullopt;
  Folder_Note note{name->get<std::string>(), type->get<std::int32_t>()};
  const auto top = json.find("top");
  note.is_top = top != json.end() && top->is_boolean() && top->get<bool>();
  if (note.name.empty() || note.default_item_type < item_type::mail ||
      note.default_item_type > item_type::note)
    return std::nullopt;
  return note;
}

std::string Folder_Note_Text(const Folder_Note& note) {
  nlohmann::json json = {{"name", note.name}, {"item_type", note.default_item_type}};
  if (note.is_top) json["top"] = true;
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace tidyfold
