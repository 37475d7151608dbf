#include "outlook/stored_protection.h"

#include "controls/interaction.h"
#include "errors/automation_error.h"

namespace tidyfold {

namespace {

constexpr const char* marks_key = "Software\\Tidyfold\\Protected Folders";

// One value for each folder that was ever protected; the registry's interface removes none.
std::string Value_Name(const std::string& store_id, const std::string& entry_id) {
  return store_id + " " + entry_id;
}

[[noreturn]] void Fail(const char* text) {
  throw Automation_Error(automation_error::call_failed, text, application_title);
}

}  // namespace

bool Stored_Protection::Is_Protected(const std::string& store_id, const std::string& entry_id) {
  Registry::Key key = 0;
  std::int32_t result = registry_.RegOpenKeyA(Registry_Root::Current_User, marks_key, key);
  std::int32_t mark = 0;
  if (result == registry_result::success) {
    std::uint32_t type = registry_type::none, size = sizeof mark;
    result = registry_.RegQueryValueExA(key, Value_Name(store_id, entry_id), type, &mark, size);
    registry_.RegCloseKey(key);
  }
  if (result == registry_result::file_not_found) return false;
  if (result != registry_result::success)
    Fail("The settings do not say whether the folder is protected, so it counts as protected.");
  return mark != 0;
}

void Stored_Protection::Set_Protected(const std::string& store_id, const std::string& entry_id,
                                      bool is_protected) {
  Registry::Key key = 0;
  std::int32_t result = registry_.RegCreateKeyA(Registry_Root::Current_User, marks_key, key);
  if (result == registry_result::success) {
    const std::int32_t mark = is_protected ? 1 : 0;
    result = registry_.RegSetValueExA(key, Value_Name(store_id, entry_id), registry_type::dword, &mark,
                                      sizeof mark);
    registry_.RegCloseKey(key);
  }
  if (result != registry_result::success)
    Fail("The settings could not be written, so the folder's protection is as it was.");
}

}  // namespace tidyfold
