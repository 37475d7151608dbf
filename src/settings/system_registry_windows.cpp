// clang-format off
#include <windows.h>
// clang-format on

#include "settings/registry.h"

namespace tidyfold {

namespace {

HKEY Handle(Registry::Key key) {
  return reinterpret_cast<HKEY>(key);
}

// Predefined keys are 32-bit values, sign-extended.
HKEY Handle(Registry_Root root) {
  return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(root)));
}

class Windows_Registry : public Registry {
 public:
  std::int32_t RegOpenKeyA(Registry_Root root, const std::string& sub_key, Key& key) override {
    HKEY opened = nullptr;
    const LSTATUS result = ::RegOpenKeyA(Handle(root), sub_key.c_str(), &opened);
    key = reinterpret_cast<Key>(opened);
    return result;
  }
  std::int32_t RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) override {
    HKEY opened = nullptr;
    const LSTATUS result = ::RegCreateKeyA(Handle(root), sub_key.c_str(), &opened);
    key = reinterpret_cast<Key>(opened);
    return result;
  }
  std::int32_t RegQueryValueExA(Key key, const std::string& name, std::uint32_t& type, void* data,
                                std::uint32_t& size) override {
    DWORD type_found = type, size_found = size;
    const LSTATUS result = ::RegQueryValueExA(Handle(key), name.c_str(), nullptr, &type_found,
                                              static_cast<BYTE*>(data), &size_found);
    type = type_found;
    size = size_found;
    return result;
  }
  std::int32_t RegSetValueExA(Key key, const std::string& name, std::uint32_t type, const void* data,
                              std::uint32_t size) override {
    return ::RegSetValueExA(Handle(key), name.c_str(), 0, type, static_cast<const BYTE*>(data), size);
  }
  std::int32_t RegCloseKey(Key key) override { return ::RegCloseKey(Handle(key)); }
};

}  // namespace

std::unique_ptr<Registry> Make_System_Registry(std::function<void(const std::string&)>) {
  return std::make_unique<Windows_Registry>();
}

}  // namespace tidyfold
