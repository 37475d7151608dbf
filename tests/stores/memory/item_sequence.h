// The order of the elements of one collection, made for long runs of deletions: by position from either end,
// or of any elements by the place that they were given, without looking at positions in between.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <utility>

namespace tidyfold::memory {

// Pointers to elements; a null one stands for a hole, which stays until a position behind it is wanted.
template <class Pointer>
class Item_Sequence {
 public:
  std::size_t Size() const { return slots_.size() - holes_; }

  // Positions count from 0 here.
  const Pointer& At(std::size_t position) {
    if (position >= first_hole_) Close_Holes();
    return slots_[position].element;
  }

  // Returns the element's place, by which it is removed.
  std::uint64_t Append(Pointer element) {
    slots_.push_back({next_place_, std::move(element)});
    return next_place_++;
  }

  void Remove(std::uint64_t place) {
    const auto found =
        std::lower_bound(slots_.begin(), slots_.end(), place,
                         [](const Slot& slot, std::uint64_t wanted) { return slot.place < wanted; });
    found->element = nullptr;
    ++holes_;
    first_hole_ = std::min(first_hole_, static_cast<std::size_t>(found - slots_.begin()));
    for (; !slots_.empty() && slots_.back().element == nullptr; --holes_) slots_.pop_back();
    for (; !slots_.empty() && slots_.front().element == nullptr; --holes_) slots_.pop_front();
    if (holes_ == 0) first_hole_ = none;
  }

  template <class Visit>
  void Clear(Visit&& visit) {
    for (const Slot& slot : slots_) {
      if (slot.element != nullptr) visit(slot.element);
    }
    slots_.clear();
    holes_ = 0;
    first_hole_ = none;
  }

 private:
  struct Slot {
    std::uint64_t place;
    Pointer element;
  };
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  void Close_Holes() {
    std::erase_if(slots_, [](const Slot& slot) { return slot.element == nullptr; });
    holes_ = 0;
    first_hole_ = none;
  }

  std::deque<Slot> slots_;
  std::size_t holes_ = 0;
  std::size_t first_hole_ = none;  // no hole stands in front of it
  std::uint64_t next_place_ = 0;
};

}  // namespace tidyfold::memory
