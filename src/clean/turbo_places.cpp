#include "clean/turbo_places.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tidyfold {

bool Turbo_Places::Next() {
  entry_id_.clear();
  if (--place_ < 1) return false;
  try {
    item_ = items_.Item(place_);
  } catch (...) {
    // What another program has taken away meanwhile was no failure.
    const std::int32_t count = items_.Count();
    if (place_ <= count) throw;
    place_ = count + 1;
    return Next();
  }
  entry_id_ = item_->EntryID();
  return true;
}

bool Turbo_Places::Is_Still_There() {
  const std::int32_t count = items_.Count();
  if (count == count_) return true;
  const std::int32_t before = std::exchange(count_, count);
  // It has moved by at most as many places as items have come or gone.
  const std::int32_t moved = std::abs(count - before), from = std::min(count, place_ + moved);
  for (std::int32_t place = from; place >= 1; --place) {
    if (items_.Item(place)->EntryID() != entry_id_) continue;
    place_ = place;
    return true;
  }
  place_ = std::min(place_, count + 1);
  return false;
}

void Turbo_Places::Remove() {
  items_.Remove(place_);
  --count_;
}

}  // namespace tidyfold
