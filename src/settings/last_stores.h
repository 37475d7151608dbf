// Which stores were open last.
#pragma once

#include <filesystem>
#include <vector>

#include "settings/registry.h"

namespace tidyfold {

// Empty where none are kept, or where the registry cannot be read.
std::vector<std::filesystem::path> Last_Stores(Registry& registry);

// Keeps absolute paths. False where the registry could not be written.
bool Keep_Last_Stores(Registry& registry, const std::vector<std::filesystem::path>& stores);

}  // namespace tidyfold
