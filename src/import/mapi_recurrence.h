// The pattern of a series as Outlook keeps it with appointments and tasks
// (https://learn.microsoft.com/openspecs/exchange_server_protocols/ms-oxocal).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold {

// All times are minutes since the start of 1601 in the series' own time zone.

// An occurrence that was changed.
struct Mapi_Occurrence {
  std::int64_t original = 0, start = 0, end = 0;
  std::optional<std::string> subject, location;  // where they differ from the series'
};

struct Mapi_Series {
  enum class End { Never, After_Count, On_Day };

  std::string rule;  // as in iCalendar, without its end
  End end_kind = End::Never;
  std::uint32_t count = 0;
  std::int64_t first_day = 0, last_day = 0;  // midnights
  std::int64_t start = 0, end = 0;           // minutes from midnight; 0 of tasks
  std::vector<std::int64_t> deleted;  // midnights of occurrences that were taken out, not of changed ones
  std::vector<Mapi_Occurrence> changed;
};

// Nothing for a pattern that is damaged or goes by another calendar than the Gregorian. Appointments have
// more in it than tasks.
std::optional<Mapi_Series> Read_Mapi_Series(std::string_view pattern, bool of_appointment);

}  // namespace tidyfold
