// The clock that tells the day and the time.
#pragma once

#include "base/dates.h"

namespace tidyfold {

class Clock {
 public:
  virtual ~Clock() = default;
  // Today's date in local time, a whole day count.
  virtual Date Today() const = 0;
  // This moment in local time; the fraction is the time of day.
  virtual Date Now() const = 0;
};

}  // namespace tidyfold
