// The most items that a store's Deleted Items folder may hold after a run.
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

// What the older kind of Outlook's store can hold in one folder.
inline constexpr std::int32_t default_deleted_items_limit = 16383;
// Stands for no limit.
inline constexpr std::int32_t no_deleted_items_limit = 0;

class Deleted_Items_Limits {
 public:
  virtual ~Deleted_Items_Limits() = default;
  // Of a store; the default where none was set.
  virtual std::int32_t Limit(const std::string& store_id) = 0;
  virtual void Set_Limit(const std::string& store_id, std::int32_t limit) = 0;
};

}  // namespace tidyfold
