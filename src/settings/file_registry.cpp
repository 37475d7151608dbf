#include "settings/file_registry.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <system_error>

#include "base/replace_file.h"
#include "base/text.h"

namespace tidyfold {

namespace {

using nlohmann::json;

constexpr const char* text_type = "REG_SZ";
constexpr const char* number_type = "REG_DWORD";

const char* Root_Name(Registry_Root root) {
  switch (root) {
    case Registry_Root::Classes_Root:
      return "HKEY_CLASSES_ROOT";
    case Registry_Root::Current_User:
      return "HKEY_CURRENT_USER";
    case Registry_Root::Users:
      return "HKEY_USERS";
    default:
      return "HKEY_LOCAL_MACHINE";
  }
}

// "\Software\Tidyfold\" names the same key as "Software\Tidyfold".
std::string Key_Path(std::string_view sub_key) {
  while (sub_key.starts_with('\\')) sub_key.remove_prefix(1);
  while (sub_key.ends_with('\\')) sub_key.remove_suffix(1);
  return Valid_Utf8(sub_key);
}

template <class Object>
auto Find(Object& object, std::string_view name) {
  const std::string wanted = Upper_Case(name);
  auto at = object.begin();
  while (at != object.end() && Upper_Case(at.key()) != wanted) ++at;
  return at;
}

// The member of that name, which is made where it is missing.
json& Member(json& object, const std::string& name) {
  const auto found = Find(object, name);
  return found != object.end() ? *found : object[name] = json::object();
}

bool Holds_Objects(const json& value) {
  return value.is_object() &&
         std::all_of(value.begin(), value.end(), [](const json& member) { return member.is_object(); });
}

bool Is_Number(const json& data) {
  if (!data.is_number_integer()) return false;
  const auto number = data.get<std::int64_t>();
  return number >= std::numeric_limits<std::int32_t>::min() &&
         number <= std::numeric_limits<std::int32_t>::max();
}

// A value of an unknown type may hold anything.
bool Is_Value(const json& value) {
  if (!value.is_object() || !value.contains("type") || !value["type"].is_string()) return false;
  const std::string& type = value["type"].get_ref<const std::string&>();
  if (type == text_type) return value.contains("data") && value["data"].is_string();
  if (type == number_type) return value.contains("data") && Is_Number(value["data"]);
  return true;
}

bool Is_Registry(const json& root) {
  if (!Holds_Objects(root)) return false;
  for (const json& keys : root) {
    if (!Holds_Objects(keys)) return false;
    for (const json& values : keys)
      if (!std::all_of(values.begin(), values.end(), Is_Value)) return false;
  }
  return true;
}

}  // namespace

struct File_Registry::Document {
  json roots = json::object();

  // Null where the root has no such key.
  const json* Key_At(const Open_Key& key) const {
    const auto root = Find(roots, Root_Name(key.root));
    if (root == roots.end()) return nullptr;
    const auto values = Find(*root, key.path);
    return values == root->end() ? nullptr : &*values;
  }
  json& Make_Key(const Open_Key& key) { return Member(Member(roots, Root_Name(key.root)), key.path); }
};

File_Registry::File_Registry(std::filesystem::path file, std::function<void(const std::string&)> tell)
    : file_(std::move(file)), tell_(std::move(tell)) {}

File_Registry::~File_Registry() = default;

std::int32_t File_Registry::RegOpenKeyA(Registry_Root root, const std::string& sub_key, Key& key) {
  key = 0;
  Document document;
  if (const std::int32_t result = Read(document); result != registry_result::success) return result;
  if (document.Key_At({root, Key_Path(sub_key)}) == nullptr) return registry_result::file_not_found;
  key = Remember(root, sub_key);
  return registry_result::success;
}

std::int32_t File_Registry::RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) {
  key = 0;
  const Open_Key wanted{root, Key_Path(sub_key)};
  Document document;
  std::int32_t result = Read(document);
  if (result != registry_result::success) return result;
  if (document.Key_At(wanted) == nullptr) {
    document.Make_Key(wanted);
    result = Write(document);
    if (result != registry_result::success) return result;
  }
  key = Remember(root, sub_key);
  return registry_result::success;
}

std::int32_t File_Registry::RegQueryValueExA(Key key, const std::string& name, std::uint32_t& type,
                                             void* data, std::uint32_t& size) {
  const auto open_key = open_keys_.find(key);
  if (open_key == open_keys_.end()) return registry_result::invalid_handle;
  Document document;
  if (const std::int32_t result = Read(document); result != registry_result::success) return result;
  const json* const values = document.Key_At(open_key->second);
  if (values == nullptr) return registry_result::file_not_found;
  const auto value = Find(*values, name);
  if (value == values->end()) return registry_result::file_not_found;

  std::string bytes;
  const std::string& type_name = (*value)["type"].get_ref<const std::string&>();
  if (type_name == text_type) {
    type = registry_type::sz;
    bytes = (*value)["data"].get<std::string>() + '\0';
  } else if (type_name == number_type) {
    type = registry_type::dword;
    const auto number = (*value)["data"].get<std::int32_t>();
    bytes.assign(reinterpret_cast<const char*>(&number), sizeof number);
  } else {
    type = registry_type::none;
  }
  const auto room = size;
  size = static_cast<std::uint32_t>(bytes.size());
  if (data == nullptr) return registry_result::success;
  if (room < size) return registry_result::more_data;
  std::memcpy(data, bytes.data(), bytes.size());
  return registry_result::success;
}

std::int32_t File_Registry::RegSetValueExA(Key key, const std::string& name, std::uint32_t type,
                                           const void* data, std::uint32_t size) {
  const auto open_key = open_keys_.find(key);
  if (open_key == open_keys_.end()) return registry_result::invalid_handle;
  json value;
  if (type == registry_type::sz) {
    std::string text(static_cast<const char*>(data), size);
    if (text.ends_with('\0')) text.pop_back();
    value = {{"type", text_type}, {"data", Valid_Utf8(text)}};
  } else if (type == registry_type::dword && size == sizeof(std::int32_t)) {
    std::int32_t number = 0;
    std::memcpy(&number, data, sizeof number);
    value = {{"type", number_type}, {"data", number}};
  } else {
    return type == registry_type::dword ? registry_result::invalid_parameter : registry_result::not_supported;
  }
  Document document;
  if (const std::int32_t result = Read(document); result != registry_result::success) return result;
  Member(document.Make_Key(open_key->second), Valid_Utf8(name)) = value;
  return Write(document);
}

std::int32_t File_Registry::RegCloseKey(Key key) {
  return open_keys_.erase(key) == 1 ? registry_result::success : registry_result::invalid_handle;
}

Registry::Key File_Registry::Remember(Registry_Root root, const std::string& sub_key) {
  open_keys_[++last_key_] = {root, Key_Path(sub_key)};
  return last_key_;
}

// A file that is not there is an empty registry.
std::int32_t File_Registry::Read(Document& document) {
  std::error_code error;
  const auto status = std::filesystem::status(file_, error);
  if (status.type() == std::filesystem::file_type::not_found) return registry_result::success;
  std::ifstream stream(file_, std::ios::binary);
  if (status.type() != std::filesystem::file_type::regular || !stream) return registry_result::access_denied;
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad()) return registry_result::access_denied;
  document.roots = json::parse(text, nullptr, false);
  if (Is_Registry(document.roots)) return registry_result::success;
  document.roots = json::object();
  stream.close();  // Windows renames no open file
  Set_Aside();
  return registry_result::success;
}

void File_Registry::Set_Aside() {
  const std::filesystem::path damaged = Behind_Links(file_);
  std::filesystem::path aside = damaged;
  aside += ".damaged";
  std::error_code error;
  std::filesystem::rename(damaged, aside, error);
  if (tell_ == nullptr) return;
  std::string text = "The file with the settings, " + file_.string() + ", is damaged. ";
  text += error ? "Remove it; until then settings are not kept."
                : "The settings start afresh; the damaged file is kept as " + aside.string() + ".";
  // Told once, whatever becomes of the file.
  std::exchange(tell_, nullptr)(text);
}

std::int32_t File_Registry::Write(const Document& document) {
  if (file_.empty()) return registry_result::file_not_found;
  return Replace_File(file_, document.roots.dump(2) + '\n') ? registry_result::access_denied
                                                            : registry_result::success;
}

}  // namespace tidyfold
