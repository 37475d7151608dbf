#include "import/recurrence.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

#include "mail/local_date.h"

namespace tidyfold {
namespace {

// Of all rules of a series; more occurrences than a daily appointment of a century has. A rule that never
// comes true takes as long as the second number of them.
constexpr int most_steps = 40'000, steps_of_rule = 1000;

using Iterator = std::unique_ptr<icalrecur_iterator, decltype(&icalrecur_iterator_free)>;

std::size_t Entries(const short* list, std::size_t size) {
  return static_cast<std::size_t>(std::find(list, list + size, ICAL_RECURRENCE_ARRAY_MAX) - list);
}

// Rules that name times of day, or go by them, make so many candidates that walking through them has no
// bound.
bool Can_Be_Walked(const icalrecurrencetype& rule) {
  if (rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE ||
      rule.freq == ICAL_HOURLY_RECURRENCE || rule.freq == ICAL_NO_RECURRENCE) {
    return false;
  }
  return Entries(rule.by_second, ICAL_BY_SECOND_SIZE) <= 1 &&
         Entries(rule.by_minute, ICAL_BY_MINUTE_SIZE) <= 1 && Entries(rule.by_hour, ICAL_BY_HOUR_SIZE) <= 1;
}

// A series without any end, or one whose end is unknown.
struct For_Ever {};

class Series {
 public:
  // `steps` is what is left to all series of a calendar.
  Series(icalcomponent* component, int& steps)
      : component_(component),
        start_(icalcomponent_get_dtstart(component)),
        first_(Date_Of_Ical(start_)),
        steps_left_(steps) {
    if (first_ != no_date) length_ = End_Of(component) - first_;
  }

  // The start of the last occurrence, nothing where there is none. Throws For_Ever.
  std::optional<Date> Last_Start() {
    Read_Exceptions();
    std::optional<Date> last;
    for (icalproperty* p = First(ICAL_RRULE_PROPERTY); p != nullptr; p = Next(ICAL_RRULE_PROPERTY)) {
      Later(last, Last_Of_Rule(icalproperty_get_rrule(p)));
    }
    if (!Is_Left_Out(start_)) Later(last, first_);
    for (icalproperty* p = First(ICAL_RDATE_PROPERTY); p != nullptr; p = Next(ICAL_RDATE_PROPERTY)) {
      const icaldatetimeperiodtype time = icalproperty_get_rdate(p);
      const icaltimetype start = icaltime_is_null_time(time.time) ? time.period.start : time.time;
      if (!Is_Left_Out(start)) Later(last, Date_Of_Ical(In_Zone(start, p)));
    }
    return last;
  }

  Date Length() const { return length_; }

 private:
  icalproperty* First(icalproperty_kind kind) { return icalcomponent_get_first_property(component_, kind); }
  icalproperty* Next(icalproperty_kind kind) { return icalcomponent_get_next_property(component_, kind); }

  static void Later(std::optional<Date>& last, std::optional<Date> date) {
    if (date && *date != no_date && (!last || *date > *last)) last = date;
  }

  // A value's zone is a parameter of its property.
  icaltimetype In_Zone(icaltimetype time, icalproperty* property) const {
    if (time.is_date || icaltime_is_utc(time)) return time;
    icalparameter* zone = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    if (zone == nullptr) return time;
    icalcomponent* calendar = icalcomponent_get_parent(component_);
    time.zone =
        calendar == nullptr ? nullptr : icalcomponent_get_timezone(calendar, icalparameter_get_tzid(zone));
    return time;
  }

  void Read_Exceptions() {
    for (icalproperty* p = First(ICAL_EXDATE_PROPERTY); p != nullptr; p = Next(ICAL_EXDATE_PROPERTY)) {
      left_out_.insert(Date_Of_Ical(In_Zone(icalproperty_get_exdate(p), p)));
    }
  }

  bool Is_Left_Out(const icaltimetype& time) const {
    return !left_out_.empty() && left_out_.contains(Date_Of_Ical(time));
  }

  std::optional<Date> Last_Of_Rule(const icalrecurrencetype& rule) {
    const bool until = !icaltime_is_null_time(rule.until);
    if (!until && rule.count <= 0) throw For_Ever{};
    // A time of day of an all-day end, or of another zone, is less than a day.
    const Date at_most = until ? Date_Of_Ical(rule.until) + 1 : no_date;
    if (!Can_Be_Walked(rule)) {
      if (!until) throw For_Ever{};
      return at_most;
    }
    steps_left_ -= steps_of_rule;
    const Iterator iterator(icalrecur_iterator_new(rule, start_), icalrecur_iterator_free);
    if (!iterator) throw For_Ever{};
    std::optional<Date> last;
    for (; steps_left_ > 0; --steps_left_) {
      const icaltimetype next = icalrecur_iterator_next(iterator.get());
      if (icaltime_is_null_time(next)) return last;
      if (!Is_Left_Out(next)) Later(last, Date_Of_Ical(next));
    }
    if (!until) throw For_Ever{};
    return at_most;
  }

  icalcomponent* component_;
  icaltimetype start_;
  Date first_;
  Date length_ = 0;
  std::set<Date> left_out_;
  int& steps_left_;
};

}  // namespace

Date Date_Of_Ical(const icaltimetype& time) {
  if (icaltime_is_null_time(time) || !icaltime_is_valid_time(time)) return no_date;
  if (time.is_date) return Date_From_Calendar(time.year, time.month, time.day, 0, 0, 0);
  if (time.zone == nullptr) {
    return Date_From_Calendar(time.year, time.month, time.day, time.hour, time.minute,
                              std::min(time.second, 59));
  }
  return Local_Date(icaltime_as_timet_with_zone(time, time.zone));
}

Date End_Of(icalcomponent* component) {
  // Without an end: a whole day, or no time at all; the library knows.
  const Date end = Date_Of_Ical(icalcomponent_get_dtend(component));
  const Date start = Date_Of_Ical(icalcomponent_get_dtstart(component));
  return end == no_date || (start != no_date && end < start) ? start : end;
}

Date End_Of_Last_Occurrence(const std::vector<icalcomponent*>& parts) {
  Date end = no_date;
  const auto later = [&](Date date) {
    if (date != no_date && (end == no_date || date > end)) end = date;
  };
  int steps = most_steps;
  try {
    for (icalcomponent* part : parts) {
      const bool recurs = icalcomponent_get_first_property(part, ICAL_RRULE_PROPERTY) != nullptr ||
                          icalcomponent_get_first_property(part, ICAL_RDATE_PROPERTY) != nullptr;
      if (!recurs) {
        later(End_Of(part));
        continue;
      }
      Series series(part, steps);
      if (const auto last = series.Last_Start()) later(*last + series.Length());
    }
  } catch (const For_Ever&) {
    return no_date;
  }
  return end;
}

}  // namespace tidyfold
