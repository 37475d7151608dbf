// Folders as text: names joined by "/" from below a store's top folder down, where a "/" or "\" of a name is
// written "\/" or "\\". The top folder itself is "/".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

inline constexpr const char* top_folder_path = "/";

// A single name as it stands in a path.
std::string Escape_Folder_Name(std::string_view name);

// The names from below the top folder down, none for the top folder itself. Names may be empty. Nothing where
// a "\" stands before anything else than "/" or "\".
std::optional<std::vector<std::string>> Split_Folder_Path(std::string_view path);

// Throws Automation_Error where a folder on the way up cannot be read.
std::string Path_Of_Folder(MAPIFolder& folder);

}  // namespace tidyfold
