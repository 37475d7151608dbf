// Which stores were open last, kept in the user's configuration.
#pragma once

#include <filesystem>
#include <vector>

namespace tidyfold {

// Empty when nothing was kept. Never throws: a configuration that cannot be read is none.
std::vector<std::filesystem::path> Last_Stores();
void Keep_Last_Stores(const std::vector<std::filesystem::path>& paths);

}  // namespace tidyfold
