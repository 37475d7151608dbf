// The places of a folder's items from the last to the first, for removing by position.
#pragma once

#include <cstdint>
#include <string>

#include "outlook/object_model.h"

namespace tidyfold {

// Another program may take items out of the folder meanwhile, or put in new ones, which nobody has chosen. So
// the item at the place is known by its EntryID from before the last yield. Before each removal the folder is
// asked for its count; where that is not the one expected, and after each yield, the item's place is looked
// up again. All calls throw Automation_Error.
class Turbo_Places {
 public:
  explicit Turbo_Places(Items& items) : items_(items), count_(items.Count()), place_(count_ + 1) {}

  // Goes to the next place down and reads who stands there. False when none is left.
  bool Next();
  // Whether the item still stands at the place, which moves with it. False when it is gone; then the next one
  // is the one below.
  bool Is_Still_There();
  // Others may have had their way with the folder: even where the count is the same, the item must be looked
  // at.
  void Yielded() { yielded_ = true; }
  // Removes the item.
  void Remove();

  const std::string& EntryID() const { return entry_id_; }
  Item& Current() { return *item_; }

 private:
  Items& items_;
  std::int32_t count_;  // expected
  std::int32_t place_;
  bool yielded_ = false;
  Item_Ptr item_;
  std::string entry_id_;
};

}  // namespace tidyfold
