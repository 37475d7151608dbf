#include "base/local_time.h"

#include "base/local_calendar.h"

namespace tidyfold {

std::optional<Date> Local_Time(std::int64_t unix_seconds) {
  std::tm local{};
  if (!Local_Calendar(static_cast<std::time_t>(unix_seconds), local)) return std::nullopt;
  const int year = local.tm_year + 1900;
  if (year < 0 || year > 9999) return std::nullopt;
  const Date day = Date_Of(std::chrono::year{year} / (local.tm_mon + 1) / local.tm_mday);
  return day + (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / 86400.0;
}

}  // namespace tidyfold
