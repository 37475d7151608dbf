#include "settings/registry_routines.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/numbers.h"
#include "base/text.h"

namespace tidyfold {

namespace {

constexpr const char* settings_key = "Software\\Tidyfold";

struct Setting {
  std::int16_t identifier;
  const char* value_name;
};

// Some are no longer used; their numbers and names stay reserved.
constexpr Setting settings[] = {{setting::home_dir, "Home_Dir"},
                                {setting::main_screen_height, "MainScreenHeight"},
                                {setting::main_screen_width, "MainScreenWidth"},
                                {setting::help_screen_height, "HelpScreenHeight"},
                                {setting::help_screen_width, "HelpScreenWidth"},
                                {setting::template_editor_height, "TemplateEditorHeight"},
                                {setting::template_editor_width, "TemplateEditorWidth"}};

const char* Value_Name(std::int16_t identifier) {
  const auto found = std::find_if(std::begin(settings), std::end(settings),
                                  [&](const Setting& setting) { return setting.identifier == identifier; });
  return found == std::end(settings) ? nullptr : found->value_name;
}

}  // namespace

bool Registry_Routines::Registry_Key_Exists(Registry_Root root, const std::string& sub_key) {
  Registry::Key key = 0;
  last_registry_result_ = registry_.RegOpenKeyA(root, sub_key, key);
  const bool exists = key != 0;
  last_registry_result_ = registry_.RegCloseKey(key);
  return exists;
}

Registry_Routines::Value Registry_Routines::Registry_Get_Value(Registry_Root root, const std::string& sub_key,
                                                               const std::string& name) {
  Registry::Key key = 0;
  last_registry_result_ = registry_.RegOpenKeyA(root, sub_key, key);
  Value value;
  if (key != 0) {
    std::uint32_t type = registry_type::none, size = 0;
    last_registry_result_ = registry_.RegQueryValueExA(key, name, type, nullptr, size);
    if (last_registry_result_ != registry_result::success) type = registry_type::none;
    if (type == registry_type::sz) {
      std::string text(size, ' ');
      last_registry_result_ = registry_.RegQueryValueExA(key, name, type, text.data(), size);
      if (last_registry_result_ == registry_result::success) value = text.substr(0, text.find('\0'));
    } else if (type == registry_type::dword) {
      std::int32_t number = 0;
      size = sizeof number;
      last_registry_result_ = registry_.RegQueryValueExA(key, name, type, &number, size);
      if (last_registry_result_ == registry_result::success) value = number;
    }
  }
  last_registry_result_ = registry_.RegCloseKey(key);
  return value;
}

bool Registry_Routines::Registry_Set_Value(Registry_Root root, const std::string& sub_key,
                                           const std::string& name, const New_Value& value) {
  const std::string* const text = std::get_if<std::string>(&value);
  const std::optional<double> numeric =
      text == nullptr ? std::get<double>(value) : Numeric_Value(*text, User_Number_Format());
  const std::int32_t number = numeric ? Rounded<std::int32_t>(*numeric) : 0;
  Registry::Key key = 0;
  last_registry_result_ = registry_.RegCreateKeyA(root, sub_key, key);
  const bool opened = last_registry_result_ == registry_result::success;
  if (numeric) {
    last_registry_result_ = registry_.RegSetValueExA(key, name, registry_type::dword, &number, sizeof number);
  } else {
    const std::string trimmed(Trim(*text));
    // The terminating NUL belongs to the value.
    last_registry_result_ = registry_.RegSetValueExA(key, name, registry_type::sz, trimmed.c_str(),
                                                     static_cast<std::uint32_t>(trimmed.size() + 1));
  }
  const bool written = opened && last_registry_result_ == registry_result::success;
  last_registry_result_ = registry_.RegCloseKey(key);
  return written;
}

void Registry_Routines::Registry_Create_Key(Registry_Root root, const std::string& sub_key) {
  Registry::Key key = 0;
  last_registry_result_ = registry_.RegCreateKeyA(root, sub_key, key);
  last_registry_result_ = registry_.RegCloseKey(key);
}

std::string Registry_Routines::Get_Setting(std::int16_t identifier) {
  const char* const name = Value_Name(identifier);
  if (name == nullptr) return {};
  for (const Registry_Root root : {Registry_Root::Current_User, Registry_Root::Local_Machine}) {
    const Value value = Registry_Get_Value(root, settings_key, name);
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    if (const auto& text = std::get<std::string>(value); !text.empty()) return text;
  }
  return {};
}

void Registry_Routines::Save_Setting(std::int16_t identifier, const New_Value& value) {
  const char* const name = Value_Name(identifier);
  if (name == nullptr) return;
  const bool written = Registry_Set_Value(Registry_Root::Local_Machine, settings_key, name, value);
  // What the user's own key holds is read first, and must not be left behind.
  if (!written || Registry_Get_Value(Registry_Root::Current_User, settings_key, name) != Value())
    Registry_Set_Value(Registry_Root::Current_User, settings_key, name, value);
}

std::string Get_Parameter(std::string& name, std::string& parameters) {
  name = std::string(Trim(name));
  parameters = std::string(Trim(parameters));
  if (name.empty() || parameters.empty()) return {};
  const std::string wanted = name + "=";
  for (std::string_view rest = parameters;;) {
    const auto plus = rest.find('+');
    const std::string_view piece = rest.substr(0, plus);
    if (piece.starts_with(wanted)) {
      const std::string_view after = piece.substr(piece.find('=') + 1);
      return std::string(after.substr(0, after.find('=')));
    }
    if (plus == std::string_view::npos) return {};
    rest.remove_prefix(plus + 1);
  }
}

}  // namespace tidyfold
