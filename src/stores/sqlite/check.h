// Looks for what is wrong with a store.
#pragma once

#include <string>
#include <vector>

#include "stores/sqlite/database.h"
#include "stores/sqlite/folder_tree.h"

namespace tidyfold::sqlite {

// One line for each fault; of many of one kind the first hundred. Throws Automation_Error where the file
// cannot be read at all.
std::vector<std::string> Check_Store(Database& database, Folder_Tree& folders);

}  // namespace tidyfold::sqlite
