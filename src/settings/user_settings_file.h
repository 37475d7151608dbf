// Where the settings of the current user lie on systems without a registry.
#pragma once

#include <filesystem>

#include "settings/registry.h"

namespace tidyfold {

// The folder tidyfold in $XDG_CONFIG_HOME, or in ~/.config. Empty where the user has no home.
std::filesystem::path User_Settings_Folder();

// The file in that folder that holds all settings.
inline constexpr const char* settings_file_name = "settings.json";

// Brings over what earlier versions kept in two files: registry.json becomes the settings file, and the
// stores that tidyfold.conf names become settings. A file whose content has been brought over is removed.
void Take_Over_Old_Settings(const std::filesystem::path& folder, Registry& registry);

}  // namespace tidyfold
