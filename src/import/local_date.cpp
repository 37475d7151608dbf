#include "import/local_date.h"

#include <chrono>
#include <ctime>

namespace tidyfold {
namespace {

constexpr std::int64_t filetime_second = 10'000'000;
constexpr std::int64_t filetime_of_1970 = 11'644'473'600;  // seconds after 1601

std::int64_t Unix_Seconds(std::uint64_t filetime) {
  return static_cast<std::int64_t>(filetime / filetime_second) - filetime_of_1970;
}

bool Calendar(std::int64_t unix_seconds, bool local, std::tm& calendar) {
  const auto time = static_cast<std::time_t>(unix_seconds);
#ifdef _WIN32
  return (local ? localtime_s(&calendar, &time) : gmtime_s(&calendar, &time)) == 0;
#else
  return (local ? localtime_r(&time, &calendar) : gmtime_r(&time, &calendar)) != nullptr;
#endif
}

Date From_Unix(std::int64_t unix_seconds, bool local) {
  std::tm calendar{};
  if (!Calendar(unix_seconds, local, calendar)) return no_date;
  return Date_From_Calendar(calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday, calendar.tm_hour,
                            calendar.tm_min, calendar.tm_sec);
}

}  // namespace

Date Date_From_Calendar(int year, int month, int day, int hour, int minute, int second) {
  using namespace std::chrono;
  if (year < 1900 || year >= 4500 || hour < 0 || hour > 24 || minute < 0 || minute > 59 || second < 0 ||
      second > 61) {
    return no_date;
  }
  const year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                            std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return no_date;
  const sys_days first = std::chrono::year(1899) / 12 / 30;
  return static_cast<Date>((sys_days(date) - first).count()) +
         static_cast<Date>(hour * 3600 + minute * 60 + second) / 86400.0;
}

Date Local_Date(std::int64_t unix_seconds) {
  return From_Unix(unix_seconds, true);
}

Date Local_Date_From_Filetime(std::uint64_t filetime) {
  return From_Unix(Unix_Seconds(filetime), true);
}

Date Date_From_Floating_Filetime(std::uint64_t filetime) {
  return From_Unix(Unix_Seconds(filetime), false);
}

}  // namespace tidyfold
