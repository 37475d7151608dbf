// Folder paths on the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "outlook/folder_path.h"

namespace tidyfold::cli {

// The names from below the top folder down, none for the top folder itself. Throws Failure for a "\" before
// any other character than "/" or "\".
std::vector<std::string> Parse_Folder_Path(std::string_view path);

}  // namespace tidyfold::cli
