// Checks a store for damage.
#pragma once

#include <string>
#include <vector>

#include "stores/sqlite/database.h"
#include "stores/sqlite/folder_tree.h"

namespace tidyfold::sqlite {

// One line for each fault, at most a hundred of each kind. Throws Automation_Error if the file cannot be read
// at all.
std::vector<std::string> Check_Store(Database& database, Folder_Tree& folders);

}  // namespace tidyfold::sqlite
