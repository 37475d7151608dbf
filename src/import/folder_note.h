// What the exporter notes of a folder, where the name of its directory and what lies in it do not tell.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tidyfold {

struct Folder_Note {
  std::string name;  // of the folder; a directory's may have had to be made safe
  std::int32_t default_item_type = 0;
  bool is_top = false;  // the store's top folder: what lies in it goes where the folders beside it go
};

// In the folder's directory; other programs pass over it.
inline constexpr const char* folder_note_file = ".tidyfold-folder";

// Nothing where there is none that can be read.
std::optional<Folder_Note> Read_Folder_Note(const std::filesystem::path& directory);

// JSON: {"item_type": 1, "name": "Calendar"}, and "top": true where it is.
std::string Folder_Note_Text(const Folder_Note& note);

}  // namespace tidyfold
