// The limits of Deleted Items folders, kept with the program's settings.
#pragma once

#include "clean/deleted_items_limits.h"
#include "settings/registry_routines.h"

namespace tidyfold {

class Stored_Limits : public Deleted_Items_Limits {
 public:
  explicit Stored_Limits(Registry& registry) : settings_(registry) {}
  std::int32_t Limit(const std::string& store_id) override;
  void Set_Limit(const std::string& store_id, std::int32_t limit) override;

 private:
  Registry_Routines settings_;
};

}  // namespace tidyfold
