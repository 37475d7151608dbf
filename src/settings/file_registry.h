// A registry in a file, for systems without one.
#pragma once

#include <filesystem>
#include <map>

#include "settings/registry.h"

namespace tidyfold {

// The file is JSON: root, key path, value name, type and data. Every operation reads it anew, so that several
// programs may share it, and every write replaces it as a whole (Replace_File). A damaged file is renamed to
// FILE.damaged, which `tell`, if any, is told once, and the settings start afresh. Holds REG_SZ and REG_DWORD
// values; values of other types are kept as they are and read as registry_type::none without data.
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
  void Set_Aside();
  Key Remember(Registry_Root root, const std::string& sub_key);

  std::filesystem::path file_;
  std::function<void(const std::string&)> tell_;
  std::map<Key, Open_Key> open_keys_;
  Key last_key_ = 0;
};

}  // namespace tidyfold
