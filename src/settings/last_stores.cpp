#include "settings/last_stores.h"

namespace tidyfold {

namespace {

constexpr const char* last_stores_key = "Software\\Tidyfold\\Last Stores";
constexpr const char* copies_key = "Software\\Tidyfold\\Copies";
constexpr const char* directory_value = "Directory";

// Values are named 1, 2, ...; the first missing or empty one ends the list.
std::string Value_Name(std::size_t number) {
  return std::to_string(number);
}

std::string Text(Registry& registry, Registry::Key key, const std::string& name) {
  std::uint32_t type = registry_type::none, size = 0;
  if (registry.RegQueryValueExA(key, name, type, nullptr, size) != registry_result::success ||
      type != registry_type::sz)
    return {};
  std::string text(size, '\0');
  if (registry.RegQueryValueExA(key, name, type, text.data(), size) != registry_result::success) return {};
  return text.substr(0, text.find('\0'));
}

bool Set_Text(Registry& registry, Registry::Key key, const std::string& name, const std::string& text) {
  return registry.RegSetValueExA(key, name, registry_type::sz, text.c_str(),
                                 static_cast<std::uint32_t>(text.size() + 1)) == registry_result::success;
}

}  // namespace

std::vector<Store_Address> Last_Stores(Registry& registry) {
  std::vector<Store_Address> stores;
  Registry::Key key = 0;
  registry.RegOpenKeyA(Registry_Root::Current_User, last_stores_key, key);
  for (;;) {
    const std::string text = Text(registry, key, Value_Name(stores.size() + 1));
    if (text.empty()) break;
    try {
      stores.push_back(Read_Store_Address(text));
    } catch (const Store_Address_Error&) {
      break;  // not written by this program
    }
  }
  registry.RegCloseKey(key);
  return stores;
}

bool Keep_Last_Stores(Registry& registry, const std::vector<Store_Address>& stores) {
  Registry::Key key = 0;
  registry.RegCreateKeyA(Registry_Root::Current_User, last_stores_key, key);
  bool kept = key != 0;
  for (std::size_t i = 0; i < stores.size() && kept; ++i)
    kept = Set_Text(registry, key, Value_Name(i + 1), stores[i].Lasting_Text());
  // The registry's interface removes no values; what a longer list left is emptied.
  for (std::size_t after = stores.size() + 1; kept && !Text(registry, key, Value_Name(after)).empty();
       ++after)
    kept = Set_Text(registry, key, Value_Name(after), "");
  registry.RegCloseKey(key);
  return kept;
}

std::string Last_Copy_Directory(Registry& registry) {
  Registry::Key key = 0;
  registry.RegOpenKeyA(Registry_Root::Current_User, copies_key, key);
  const std::string directory = Text(registry, key, directory_value);
  registry.RegCloseKey(key);
  return directory;
}

bool Keep_Copy_Directory(Registry& registry, const std::string& directory) {
  Registry::Key key = 0;
  registry.RegCreateKeyA(Registry_Root::Current_User, copies_key, key);
  const bool kept = key != 0 && Set_Text(registry, key, directory_value, directory);
  registry.RegCloseKey(key);
  return kept;
}

}  // namespace tidyfold
