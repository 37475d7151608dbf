// The registry that holds the settings: the system's on Windows, a file elsewhere.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tidyfold {

// The predefined keys, HKEY_CLASSES_ROOT and so on.
enum class Registry_Root : std::uint32_t {
  Classes_Root = 0x80000000,
  Current_User = 0x80000001,
  Local_Machine = 0x80000002,
  Users = 0x80000003
};

// The platform's values of the types and results that the program uses.
namespace registry_type {
inline constexpr std::uint32_t none = 0, sz = 1, dword = 4;
}
namespace registry_result {
inline constexpr std::int32_t success = 0, file_not_found = 2, access_denied = 5, invalid_handle = 6,
                              not_supported = 50, invalid_parameter = 87, more_data = 234;
}

// The platform's calls. Each returns its result and never throws. Every call accepts 0, which is not a key.
// Names of keys and values ignore case, as on the platform.
class Registry {
 public:
  using Key = std::uintptr_t;

  virtual ~Registry() = default;
  virtual std::int32_t RegOpenKeyA(Registry_Root root, const std::string& sub_key, Key& key) = 0;
  // Opens the key and creates it if it is missing.
  virtual std::int32_t RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) = 0;
  // Returns type and size in bytes. If `data` is given, also copies the bytes; `size` then says how many fit.
  virtual std::int32_t RegQueryValueExA(Key key, const std::string& name, std::uint32_t& type, void* data,
                                        std::uint32_t& size) = 0;
  virtual std::int32_t RegSetValueExA(Key key, const std::string& name, std::uint32_t type, const void* data,
                                      std::uint32_t size) = 0;
  virtual std::int32_t RegCloseKey(Key key) = 0;
};

// The registry of this machine. `tell` gets messages for the person, as for a damaged file.
std::unique_ptr<Registry> Make_System_Registry(std::function<void(const std::string&)> tell);

}  // namespace tidyfold
