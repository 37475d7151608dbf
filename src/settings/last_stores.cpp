#include "settings/last_stores.h"

#include <algorithm>

#include "settings/user_values.h"

namespace tidyfold {

namespace {

constexpr const char* last_stores_key = "Software\\Tidyfold\\Last Stores";
constexpr const char* recent_stores_key = "Software\\Tidyfold\\Recent Stores";
constexpr const char* commands_key = "Software\\Tidyfold\\Password Commands";
constexpr const char* copies_key = "Software\\Tidyfold\\Copies";
constexpr const char* directory_value = "Directory";
constexpr std::size_t most_recent = 12;

// Values are named 1, 2, ...; the first missing or empty one ends the list.
std::vector<std::string> List(const User_Values& values) {
  std::vector<std::string> texts;
  for (;;) {
    std::string text = values.Text(std::to_string(texts.size() + 1));
    if (text.empty()) return texts;
    texts.push_back(std::move(text));
  }
}

bool Keep_List(User_Values& values, const std::vector<std::string>& texts) {
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (!values.Set_Text(std::to_string(i + 1), texts[i])) return false;
  // The registry's interface removes no values; what a longer list left is emptied.
  for (std::size_t after = texts.size() + 1; !values.Text(std::to_string(after)).empty(); ++after)
    if (!values.Set_Text(std::to_string(after), "")) return false;
  return true;
}

}  // namespace

std::vector<Store_Address> Last_Stores(Registry& registry) {
  std::vector<Store_Address> stores;
  try {
    for (const std::string& text : List(User_Values(registry, last_stores_key)))
      stores.push_back(Read_Store_Address(text));
  } catch (const Store_Address_Error&) {
    return stores;  // not written by this program
  }
  return stores;
}

bool Keep_Last_Stores(Registry& registry, const std::vector<Store_Address>& stores) {
  std::vector<std::string> texts(stores.size());
  std::transform(stores.begin(), stores.end(), texts.begin(),
                 [](const Store_Address& store) { return store.Lasting_Text(); });
  User_Values last(registry, last_stores_key), recent(registry, recent_stores_key);
  if (!Keep_List(last, texts)) return false;
  for (const std::string& before : List(recent))
    if (std::find(texts.begin(), texts.end(), before) == texts.end()) texts.push_back(before);
  texts.resize(std::min(texts.size(), most_recent));
  return Keep_List(recent, texts);
}

std::vector<std::string> Recent_Stores(Registry& registry) {
  return List(User_Values(registry, recent_stores_key));
}

std::string Password_Command(Registry& registry, const Store_Address& account) {
  return User_Values(registry, commands_key).Text(account.Lasting_Text());
}

bool Keep_Password_Command(Registry& registry, const Store_Address& account, const std::string& command) {
  return User_Values(registry, commands_key).Set_Text(account.Lasting_Text(), command);
}

std::string Last_Copy_Directory(Registry& registry) {
  return User_Values(registry, copies_key).Text(directory_value);
}

bool Keep_Copy_Directory(Registry& registry, const std::string& directory) {
  return User_Values(registry, copies_key).Set_Text(directory_value, directory);
}

}  // namespace tidyfold
