#include "settings/user_settings_file.h"

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "settings/last_stores.h"

namespace tidyfold {

namespace {

std::filesystem::path Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// wxFileConfig wrote line ends, tabs and backslashes with a backslash before them.
std::string Without_Escapes(std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\' || at + 1 == text.size()) {
      plain += text[at];
    } else {
      const char escaped = text[++at];
      plain += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped == 'r' ? '\r' : escaped;
    }
  }
  return plain;
}

// The entries 1, 2, ... of the group "Stores".
std::vector<Store_Address> Stores_In(std::ifstream& configuration) {
  std::vector<Store_Address> stores;
  bool in_group = false;
  for (std::string line; std::getline(configuration, line);) {
    if (line.starts_with('[')) {
      in_group = line == "[Stores]";
    } else if (const std::string entry = std::to_string(stores.size() + 1) + "=";
               in_group && line.starts_with(entry)) {
      stores.emplace_back(std::filesystem::path(Without_Escapes(line.substr(entry.size()))));
    }
  }
  return stores;
}

}  // namespace

std::filesystem::path User_Settings_Folder() {
  std::filesystem::path folder = Variable("XDG_CONFIG_HOME");
  // The XDG Base Directory rules ignore a relative one.
  if (!folder.is_absolute()) {
    const std::filesystem::path home = Variable("HOME");
    if (!home.is_absolute()) return {};
    folder = home / ".config";
  }
  return folder / "tidyfold";
}

void Take_Over_Old_Settings(const std::filesystem::path& folder, Registry& registry) {
  std::error_code ignored;
  const std::filesystem::path settings = folder / settings_file_name, old_registry = folder / "registry.json",
                              old_configuration = folder / "tidyfold.conf";
  if (!std::filesystem::exists(std::filesystem::symlink_status(settings, ignored)))
    std::filesystem::rename(old_registry, settings, ignored);

  std::ifstream configuration(old_configuration);
  if (!configuration) return;
  const std::vector<Store_Address> stores = Stores_In(configuration);
  // What the settings themselves say is newer.
  if (!stores.empty() && Last_Stores(registry).empty() && !Keep_Last_Stores(registry, stores)) return;
  std::filesystem::remove(old_configuration, ignored);
}

}  // namespace tidyfold
