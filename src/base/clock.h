// The clock that tells today's date.
#pragma once

#include "base/dates.h"

namespace tidyfold {

class Clock {
 public:
  virtual ~Clock() = default;
  // Today's date in local time, a whole day count.
  virtual Date Today() const = 0;
};

}  // namespace tidyfold
