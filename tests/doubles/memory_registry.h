// A registry in memory that shows what was stored, byte by byte, and that can refuse to write.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <utility>

#include "settings/registry.h"

namespace tidyfold {

class Memory_Registry : public Registry {
 public:
  struct Stored {
    std::uint32_t type = 0;
    std::string bytes;
  };

  // Key path and value name.
  std::map<std::pair<std::string, std::string>, Stored> values;
  bool writable = true;
  int calls = 0, open_keys = 0;

  std::int32_t RegOpenKeyA(Registry_Root, const std::string& sub_key, Key& key) override {
    ++calls;
    for (const auto& [name, value] : values)
      if (name.first == sub_key) return Open(sub_key, key);
    key = 0;
    return registry_result::file_not_found;
  }
  std::int32_t RegCreateKeyA(Registry_Root, const std::string& sub_key, Key& key) override {
    ++calls;
    key = 0;
    return writable ? Open(sub_key, key) : registry_result::access_denied;
  }
  std::int32_t RegQueryValueExA(Key key, const std::string& name, std::uint32_t& type, void* data,
                                std::uint32_t& size) override {
    ++calls;
    const auto value = values.find({Path(key), name});
    if (value == values.end()) return registry_result::file_not_found;
    type = value->second.type;
    size = static_cast<std::uint32_t>(value->second.bytes.size());
    if (data != nullptr) std::memcpy(data, value->second.bytes.data(), size);
    return registry_result::success;
  }
  std::int32_t RegSetValueExA(Key key, const std::string& name, std::uint32_t type, const void* data,
                              std::uint32_t size) override {
    ++calls;
    if (key == 0) return registry_result::invalid_handle;
    values[{Path(key), name}] = {type, std::string(static_cast<const char*>(data), size)};
    return registry_result::success;
  }
  std::int32_t RegCloseKey(Key key) override {
    ++calls;
    if (keys_.erase(key) == 0) return registry_result::invalid_handle;
    --open_keys;
    return registry_result::success;
  }

 private:
  std::string Path(Key key) const {
    const auto open = keys_.find(key);
    return open == keys_.end() ? std::string{} : open->second;
  }
  std::int32_t Open(const std::string& sub_key, Key& key) {
    ++open_keys;
    keys_[key = ++last_key_] = sub_key;
    return registry_result::success;
  }

  std::map<Key, std::string> keys_;
  Key last_key_ = 0;
};

}  // namespace tidyfold
