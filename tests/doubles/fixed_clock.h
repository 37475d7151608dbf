// A clock that stands still until the test moves it.
#pragma once

#include "base/clock.h"

namespace tidyfold {

class Fixed_Clock : public Clock {
 public:
  explicit Fixed_Clock(Date day = 45000) : today(day) {}  // 2023-03-15
  Date Today() const override { return today; }
  Date Now() const override { return today + 0.5; }
  Date today;
};

}  // namespace tidyfold
