// The registry as the settings reach it: on Windows the system's own, elsewhere a file.
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

// The platform's numbers of the types and results that the program tells apart.
namespace registry_type {
inline constexpr std::uint32_t none = 0, sz = 1, dword = 4;
}
namespace registry_result {
inline constexpr std::int32_t success = 0, file_not_found = 2, access_denied = 5, invalid_handle = 6,
                              not_supported = 50, invalid_parameter = 87, more_data = 234;
}

// The platform's calls. Each returns its result and never throws; a key of 0 is no key, and every call may be
// given one. Names of keys and values are told apart as the platform does it, without regard to case.
class Registry {
 public:
  using Key = std::uintptr_t;

  virtual ~Registry() = default;
  virtual std::int32_t RegOpenKeyA(Registry_Root root, const std::string& sub_key, Key& key) = 0;
  // Opens the key, and makes it where it is missing.
  virtual std::int32_t RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) = 0;
  // Tells type and size in bytes, and copies the bytes where `data` is given; `size` then holds the room.
  virtual std::int32_t RegQueryValueExA(Key key, const std::string& name, std::uint32_t& type, void* data,
                                        std::uint32_t& size) = 0;
  virtual std::int32_t RegSetValueExA(Key key, const std::string& name, std::uint32_t type, const void* data,
                                      std::uint32_t size) = 0;
  virtual std::int32_t RegCloseKey(Key key) = 0;
};

// The registry of this machine. `tell` is given what the person should know, a damaged file for one.
std::unique_ptr<Registry> Make_System_Registry(std::function<void(const std::string&)> tell);

}  // namespace tidyfold
