#include "clean/turbo_places.h"

#include <algorithm>
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
  const bool yielded = std::exchange(yielded_, false);
  if (count == count_ && (!yielded || items_.Item(place_)->EntryID() == entry_id_)) return true;
  count_ = count;
  for (std::int32_t place = count; place >= 1; --place) {
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
