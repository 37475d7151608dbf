#include "import/mapi_time_zone.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "import/mapi.h"

namespace tidyfold {
namespace {

constexpr std::size_t size_of_rules = 48;
constexpr std::size_t standard_change_at = 14, daylight_change_at = 32;
constexpr int longest_offset = 24 * 60;

// A day of the year: "the second Sunday of March, 2:00".
struct Change {
  int month, weekday, week, hour, minute;
};

int Short_At(std::string_view rules, std::size_t at) {
  return static_cast<int>(Little_Endian(rules.substr(at, 2)));
}

int Minutes_At(std::string_view rules, std::size_t at) {
  return static_cast<std::int32_t>(Little_Endian(rules.substr(at, 4)));
}

// Nothing if the zone does not change its clocks.
std::optional<Change> Read_Change(std::string_view rules, std::size_t at) {
  const Change change{Short_At(rules, at + 2), Short_At(rules, at + 4), Short_At(rules, at + 6),
                      Short_At(rules, at + 8), Short_At(rules, at + 10)};
  if (change.month < 1 || change.month > 12 || change.weekday > 6 || change.week < 1 || change.week > 5 ||
      change.hour > 23 || change.minute > 59) {
    return std::nullopt;
  }
  return change;
}

icalcomponent* Build_Part(icalcomponent_kind kind, const std::optional<Change>& change, int from, int to) {
  icalcomponent* part = icalcomponent_new(kind);
  std::array<char, 32> start{};
  std::snprintf(start.data(), start.size(), "16010101T%02d%02d00", change ? change->hour : 0,
                change ? change->minute : 0);
  icalcomponent_add_property(part, icalproperty_new_dtstart(icaltime_from_string(start.data())));
  // Offsets are kept as what to add to local time.
  icalcomponent_add_property(part, icalproperty_new_tzoffsetfrom(-from * 60));
  icalcomponent_add_property(part, icalproperty_new_tzoffsetto(-to * 60));
  if (change) {
    constexpr std::array<const char*, 7> days = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    const std::string rule = "FREQ=YEARLY;BYMONTH=" + std::to_string(change->month) +
                             ";BYDAY=" + std::to_string(change->week == 5 ? -1 : change->week) +
                             days[static_cast<std::size_t>(change->weekday)];
    icalcomponent_add_property(part, icalproperty_new_rrule(icalrecurrencetype_from_string(rule.c_str())));
  }
  return part;
}

}  // namespace

icalcomponent* Build_Time_Zone(std::string_view rules, const std::string& name) {
  if (rules.size() < size_of_rules || name.empty()) return nullptr;
  const int bias = Minutes_At(rules, 0);
  const int standard = Minutes_At(rules, 4), daylight = Minutes_At(rules, 8);
  for (const int part : {bias, standard, daylight})
    if (part < -longest_offset || part > longest_offset) return nullptr;
  const auto to_standard = Read_Change(rules, standard_change_at);
  const auto to_daylight = Read_Change(rules, daylight_change_at);
  icalcomponent* zone = icalcomponent_new_vtimezone();
  icalcomponent_add_property(zone, icalproperty_new_tzid(name.c_str()));
  if (!to_standard || !to_daylight) {
    icalcomponent_add_component(
        zone, Build_Part(ICAL_XSTANDARD_COMPONENT, std::nullopt, bias + standard, bias + standard));
    return zone;
  }
  icalcomponent_add_component(
      zone, Build_Part(ICAL_XSTANDARD_COMPONENT, to_standard, bias + daylight, bias + standard));
  icalcomponent_add_component(
      zone, Build_Part(ICAL_XDAYLIGHT_COMPONENT, to_daylight, bias + standard, bias + daylight));
  return zone;
}

}  // namespace tidyfold
