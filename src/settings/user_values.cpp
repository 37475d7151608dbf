#include "settings/user_values.h"

#include <charconv>

#include "settings/registry_routines.h"

namespace tidyfold {

namespace {

// An open key of the current user; 0 where it could not be opened.
class Open_Key {
 public:
  Open_Key(Registry& registry, const std::string& path, bool create) : registry_(registry) {
    if (create) {
      registry_.RegCreateKeyA(Registry_Root::Current_User, path, key);
    } else {
      registry_.RegOpenKeyA(Registry_Root::Current_User, path, key);
    }
  }
  Open_Key(const Open_Key&) = delete;
  Open_Key& operator=(const Open_Key&) = delete;
  ~Open_Key() { registry_.RegCloseKey(key); }

  Registry::Key key = 0;

 private:
  Registry& registry_;
};

}  // namespace

std::string User_Values::Text(const std::string& name) const {
  const Open_Key open(registry_, key_, false);
  std::uint32_t type = registry_type::none, size = 0;
  if (registry_.RegQueryValueExA(open.key, name, type, nullptr, size) != registry_result::success ||
      type != registry_type::sz)
    return {};
  std::string text(size, '\0');
  if (registry_.RegQueryValueExA(open.key, name, type, text.data(), size) != registry_result::success)
    return {};
  return text.substr(0, text.find('\0'));
}

bool User_Values::Set_Text(const std::string& name, const std::string& text) {
  const Open_Key open(registry_, key_, true);
  // The terminating NUL belongs to the value.
  return open.key != 0 &&
         registry_.RegSetValueExA(open.key, name, registry_type::sz, text.c_str(),
                                  static_cast<std::uint32_t>(text.size() + 1)) == registry_result::success;
}

std::optional<std::int32_t> Kept_Numbers::Get(const std::string& name) const {
  std::string wanted = name, text = text_;
  const std::string value = Get_Parameter(wanted, text);
  std::int32_t number = 0;
  const auto read = std::from_chars(value.data(), value.data() + value.size(), number);
  if (value.empty() || read.ec != std::errc() || read.ptr != value.data() + value.size()) return std::nullopt;
  return number;
}

void Kept_Numbers::Set(const std::string& name, std::int32_t number) {
  text_ += (text_.empty() ? "" : "+") + name + "=" + std::to_string(number);
}

}  // namespace tidyfold
