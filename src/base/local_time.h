// Moments of the computer's clock as day counts in the user's time zone.
#pragma once

#include <cstdint>
#include <optional>

#include "base/dates.h"

namespace tidyfold {

// A moment in seconds since 1970 in UTC as local date and time; nothing outside the years
// 0 to 9999.
std::optional<Date> Local_Time(std::int64_t unix_seconds);

}  // namespace tidyfold
