#include "clean/stored_limits.h"

#include <variant>

namespace tidyfold {

namespace {

constexpr const char* key = "Software\\Tidyfold\\Deleted Items Limits";

}  // namespace

std::int32_t Stored_Limits::Limit(const std::string& store_id) {
  const auto value = settings_.Registry_Get_Value(Registry_Root::Current_User, key, store_id);
  const std::int32_t* const limit = std::get_if<std::int32_t>(&value);
  return limit == nullptr || *limit < 0 ? default_deleted_items_limit : *limit;
}

void Stored_Limits::Set_Limit(const std::string& store_id, std::int32_t limit) {
  settings_.Registry_Create_Key(Registry_Root::Current_User, key);
  settings_.Registry_Set_Value(Registry_Root::Current_User, key, store_id, static_cast<double>(limit));
}

}  // namespace tidyfold
