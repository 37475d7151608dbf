// Dates as day counts: whole days from 1899-12-30 in the proleptic Gregorian calendar.
#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace tidyfold {

// A day count from 1899-12-30; the fraction is the time of day, local time.
using Date = double;

inline constexpr std::chrono::sys_days date_epoch =
    std::chrono::sys_days(std::chrono::year(1899) / std::chrono::December / 30);

constexpr Date Date_Of(std::chrono::year_month_day day) {
  return static_cast<Date>((std::chrono::sys_days(day) - date_epoch).count());
}

inline constexpr Date first_date = Date_Of(std::chrono::year(0) / std::chrono::January / 1);
inline constexpr Date date_limit = Date_Of(std::chrono::year(10000) / std::chrono::January / 1);

// "yyyy-mm-dd"; the time of day is dropped. Empty for what is no date of the years 0 to 9999, as a damaged
// store may hold it. Written by hand because sorting by date asks for it once per row.
inline std::string Format_Date(Date date) {
  if (!(date >= first_date && date < date_limit)) return {};
  const std::chrono::year_month_day day(date_epoch + std::chrono::days(static_cast<int>(std::floor(date))));
  std::string text = "0000-00-00";
  const auto write = [&](std::size_t last, unsigned number) {
    for (; number > 0; number /= 10) text[last--] = static_cast<char>('0' + number % 10);
  };
  write(3, static_cast<unsigned>(static_cast<int>(day.year())));
  write(6, static_cast<unsigned>(day.month()));
  write(9, static_cast<unsigned>(day.day()));
  return text;
}

// "yyyy-mm-ddThh:mm:ss".
inline std::string Format_Moment(Date moment) {
  const auto seconds = static_cast<std::int64_t>(std::llround((moment - std::floor(moment)) * 86400));
  const std::int64_t next_day = seconds / 86400;  // where the last second is rounded up
  const Date day = std::floor(moment) + static_cast<Date>(next_day);
  const auto of_day = static_cast<int>(seconds % 86400);
  char text[16];
  std::snprintf(text, sizeof text, "T%02d:%02d:%02d", of_day / 3600, of_day / 60 % 60, of_day % 60);
  return Format_Date(day) + text;
}

// The date that "yyyy-mm-dd" names; nothing for any other text and for days that no calendar has.
inline std::optional<Date> Parse_Date(std::string_view text) {
  int year = 0;
  unsigned month = 0, day = 0;
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  for (const std::size_t at : {0u, 1u, 2u, 3u, 5u, 6u, 8u, 9u})
    if (text[at] < '0' || text[at] > '9') return std::nullopt;
  const std::string copy(text);
  if (std::sscanf(copy.c_str(), "%4d-%2u-%2u", &year, &month, &day) != 3) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  if (!date.ok()) return std::nullopt;
  return Date_Of(date);
}

}  // namespace tidyfold
