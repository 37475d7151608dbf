// Folder paths on the command line: names joined by "/"; a "/" or "\" in a name is written "\/" or "\\". A
// store's top folder is "/".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidyfold::cli {

inline constexpr const char* top_folder_path = "/";

// The names from below the top folder down, none for the top folder itself. Names may be empty. Throws
// Failure for a "\" before any other character than "/" or "\".
std::vector<std::string> Parse_Folder_Path(std::string_view path);

// A single name as it stands in a path.
std::string Escape_Folder_Name(std::string_view name);

}  // namespace tidyfold::cli
