#include "settings/file_registry.h"
#include "settings/user_settings_file.h"

namespace tidyfold {

std::unique_ptr<Registry> Make_System_Registry(std::function<void(const std::string&)> tell) {
  const std::filesystem::path folder = User_Settings_Folder();
  if (folder.empty()) return std::make_unique<File_Registry>(std::filesystem::path(), std::move(tell));
  auto registry = std::make_unique<File_Registry>(folder / settings_file_name, std::move(tell));
  Take_Over_Old_Settings(folder, *registry);
  return registry;
}

}  // namespace tidyfold
