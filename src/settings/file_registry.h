// A registry in a file, for systems that have none.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "settings/registry.h"

namespace tidyfold {

// Where the registry of the current user lies: tidyfold/registry.json in $XDG_CONFIG_HOME, or in ~/.config.
// Empty where the user has no home.
std::filesystem::path User_Registry_File();

// The file is JSON: root, key path, value name, type and data. It is read anew by every operation, so that
// several programs may share it, and replaced as a whole by every write, so that it is never seen half
// written. A file that cannot be understood is set aside as FILE.damaged, which `tell` is told once, and
// settings start afresh. Holds REG_SZ and REG_DWORD values; values of other types are kept as they are and
// read as a type of their own without data.
class File_Registry : public Registry {
 public:
  File_Registry(std::filesystem::path file, std::function<void(const std::string&)> tell);
  ~File_Registry() override;

  std::int32_t RegOpenKeyA(Registry_Root root, const std::string& sub_key, Key& key) override;
  std::int32_t RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) override;
  std::int32_t RegQueryValueExA(Key key, const std::string& name, std::uint32_t& type, void* data,
                                std::uint32_t& size) override;
  std::int32_t RegSetValueExA(Key key, const std::string& name, std::uint32_t type, const void* data,
                              std::uint32_t size) override;
  std::int32_t RegCloseKey(Key key) override;

 private:
  struct Document;
  struct Open_Key {
    Registry_Root root;
    std::string path;
  };

  std::int32_t Read(Document& document);
  std::int32_t Write(const Document& document);
  void Set_Aside(const std::string& reason);
  Key Remember(Registry_Root root, const std::string& sub_key);

  std::filesystem::path file_;
  std::function<void(const std::string&)> tell_;
  std::map<Key, Open_Key> open_keys_;
  Key last_key_ = 0;
};

}  // namespace tidyfold
