#include "settings/file_registry.h"

namespace tidyfold {

std::unique_ptr<Registry> Make_System_Registry(std::function<void(const std::string&)> tell) {
  return std::make_unique<File_Registry>(User_Registry_File(), std::move(tell));
}

}  // namespace tidyfold
