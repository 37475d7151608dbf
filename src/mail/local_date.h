// Points in time as the day counts that stores keep: local time, days from 1899-12-30.
#pragma once

#include <cstdint>

#include "outlook/object_model.h"

namespace tidyfold {

// All return no_date for dates before 1900 and from 4500 on: Outlook stores the start of 4501, in some time
// zone, for "no date".

// Seconds since 1970 in UTC, shown in the user's time zone.
Date Local_Date(std::int64_t unix_seconds);

// 100-nanosecond intervals since 1601 in UTC.
Date Local_Date_From_Filetime(std::uint64_t filetime);

// The same intervals, but counted in local time: some properties are dates without a zone.
Date Date_From_Floating_Filetime(std::uint64_t filetime);

// A calendar date and time of day.
Date Date_From_Calendar(int year, int month, int day, int hour, int minute, int second);

}  // namespace tidyfold
