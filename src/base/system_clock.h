// Day and time by the computer's clock.
#pragma once

#include <cmath>
#include <ctime>

#include "base/clock.h"
#include "base/local_time.h"

namespace tidyfold {

class System_Clock : public Clock {
 public:
  Date Today() const override { return std::floor(Now()); }
  Date Now() const override { return Local_Time(std::time(nullptr)).value_or(0); }
};

}  // namespace tidyfold
