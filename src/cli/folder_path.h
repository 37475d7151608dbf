// Folders as they are written on the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "outlook/folder_path.h"

namespace tidyfold::cli {

// The names from below the top folder down, none for the top folder itself. Throws Failure where a "\" stands
// before anything else than "/" or "\".
std::vector<std::string> Parse_Folder_Path(std::string_view path);

}  // namespace tidyfold::cli
