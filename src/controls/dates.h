// Dates as day counts: whole days from 1899-12-30 in the proleptic Gregorian calendar.
#pragma once

#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "controls/values.h"

namespace tidyfold {

inline constexpr std::chrono::sys_days date_epoch =
    std::chrono::sys_days(std::chrono::year(1899) / std::chrono::December / 30);

constexpr Date Date_Of(std::chrono::year_month_day day) {
  return static_cast<Date>((std::chrono::sys_days(day) - date_epoch).count());
}

// "yyyy-mm-dd"; the time of day is dropped.
inline std::string Format_Date(Date date) {
  const std::chrono::year_month_day day(date_epoch + std::chrono::days(static_cast<int>(std::floor(date))));
  char text[24];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text;
}

// The date that "yyyy-mm-dd" names; nothing for any other text and for days that no calendar has.
inline std::optional<Date> Parse_Date(std::string_view text) {
  int year = 0;
  unsigned month = 0, day = 0;
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  for (const std::size_t at : {0, 1, 2, 3, 5, 6, 8, 9})
    if (text[at] < '0' || text[at] > '9') return std::nullopt;
  const std::string copy(text);
  if (std::sscanf(copy.c_str(), "%4d-%2u-%2u", &year, &month, &day) != 3) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  if (!date.ok()) return std::nullopt;
  return Date_Of(date);
}

}  // namespace tidyfold
