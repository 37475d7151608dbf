#include "mail/local_date.h"

#include "base/local_time.h"

namespace tidyfold {

namespace {

constexpr std::int64_t filetime_second = 10'000'000;
constexpr std::int64_t filetime_of_1970 = 11'644'473'600;  // seconds after 1601
constexpr Date date_of_1970 = Date_Of(std::chrono::year(1970) / std::chrono::January / 1);
constexpr Date earliest = Date_Of(std::chrono::year(1900) / std::chrono::January / 1);
constexpr Date limit = Date_Of(std::chrono::year(4500) / std::chrono::January / 1);

std::int64_t Unix_Seconds(std::uint64_t filetime) {
  return static_cast<std::int64_t>(filetime / filetime_second) - filetime_of_1970;
}

Date If_In_Range(Date date) {
  return date >= earliest && date < limit ? date : no_date;
}

}  // namespace

Date Date_From_Calendar(int year, int month, int day, int hour, int minute, int second) {
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok() || hour < 0 || hour > 24 || minute < 0 || minute > 59 || second < 0 || second > 61)
    return no_date;
  return If_In_Range(Date_Of(date) + (hour * 3600 + minute * 60 + second) / 86400.0);
}

Date Local_Date(std::int64_t unix_seconds) {
  return If_In_Range(Local_Time(unix_seconds).value_or(no_date));
}

Date Local_Date_From_Filetime(std::uint64_t filetime) {
  return Local_Date(Unix_Seconds(filetime));
}

Date Date_From_Floating_Filetime(std::uint64_t filetime) {
  return If_In_Range(date_of_1970 + static_cast<Date>(Unix_Seconds(filetime)) / 86400.0);
}

}  // namespace tidyfold
