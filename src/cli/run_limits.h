// The limits of Deleted Items folders during one command.
#pragma once

#include <optional>

#include "clean/deleted_items_limits.h"

namespace tidyfold::cli {

// The limit that the command line gives stands for every store's own and is not stored.
class Run_Limits : public Deleted_Items_Limits {
 public:
  Run_Limits(Deleted_Items_Limits& stored, std::optional<std::int32_t> given)
      : stored_(stored), given_(given) {}
  std::int32_t Limit(const std::string& store_id) override {
    return given_ ? *given_ : stored_.Limit(store_id);
  }
  void Set_Limit(const std::string& store_id, std::int32_t limit) override {
    stored_.Set_Limit(store_id, limit);
  }

 private:
  Deleted_Items_Limits& stored_;
  std::optional<std::int32_t> given_;
};

}  // namespace tidyfold::cli
