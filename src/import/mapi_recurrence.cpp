#include "import/mapi_recurrence.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "import/mapi.h"
#include "mail/charset.h"

namespace tidyfold {
namespace {

constexpr std::uint64_t daily = 0x200A, monthly = 0x200C, yearly = 0x200D;
constexpr std::uint64_t by_day = 0, by_week = 1, by_month_day = 2, by_month_weekday = 3, by_month_end = 4;
constexpr std::uint64_t ends_on_date = 0x2021, ends_after_count = 0x2022;
constexpr std::int64_t minutes_of_day = std::int64_t{24} * 60;
constexpr std::uint64_t has_subject = 0x1, has_location = 0x10;
// Flags of a changed occurrence that each bring one number.
constexpr std::array<std::uint64_t, 3> before_location = {0x2, 0x4, 0x8};
constexpr std::array<std::uint64_t, 4> behind_location = {0x20, 0x40, 0x80, 0x100};
constexpr std::uint64_t writer_with_highlights = 0x3009;

// The pattern ended too early, or is none that iCalendar can tell.
struct Unreadable {};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  std::string_view Take(std::size_t size) {
    if (size > bytes_.size()) throw Unreadable{};
    const std::string_view taken = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return taken;
  }
  std::uint64_t Number(std::size_t size) { return Little_Endian(Take(size)); }
  std::int64_t Minutes() { return static_cast<std::int64_t>(Number(4)); }
  std::vector<std::int64_t> Days() {
    const std::uint64_t count = Number(4);
    if (count > bytes_.size() / 4) throw Unreadable{};
    std::vector<std::int64_t> days;
    for (std::uint64_t i = 0; i < count; ++i) days.push_back(Minutes());
    return days;
  }

 private:
  std::string_view bytes_;
};

std::string Weekdays(std::uint64_t mask) {
  constexpr std::array<const char*, 7> names = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
  std::string days;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if ((mask >> i & 1) != 0) days += (days.empty() ? "" : ",") + std::string(names[i]);
  }
  if (days.empty()) throw Unreadable{};
  return days;
}

// 1 to 12, of a number of days since the start of 1601.
int Month_Of(std::int64_t day) {
  // Days from the start of March of the year 0, the calendar's own period of 400 years being 146097 days.
  const std::int64_t shifted = (day + 584694) % 146097;
  const std::int64_t year = (shifted - shifted / 1460 + shifted / 36524 - shifted / 146096) / 365;
  const std::int64_t of_year = shifted - (365 * year + year / 4 - year / 100);
  const std::int64_t month = (5 * of_year + 2) / 153;
  return static_cast<int>(month < 10 ? month + 3 : month - 9);
}

struct Pattern {
  std::uint64_t frequency, kind, period, first = 0, second = 0;
  std::uint64_t week_start = 0;
};

// Where a month is too short, Outlook takes its last day.
std::string Month_Day(std::uint64_t day) {
  if (day < 1 || day > 31) throw Unreadable{};
  if (day == 31) return ";BYMONTHDAY=-1";
  if (day <= 28) return ";BYMONTHDAY=" + std::to_string(day);
  std::string days = ";BYMONTHDAY=28";
  for (std::uint64_t shorter = 29; shorter <= day; ++shorter) days += "," + std::to_string(shorter);
  return days + ";BYSETPOS=-1";
}

std::string Rule(const Pattern& pattern, std::int64_t first_day) {
  std::uint64_t interval = pattern.period;
  std::string rule, by;
  switch (pattern.kind) {
    case by_day:
      if (pattern.frequency != daily) throw Unreadable{};
      rule = "FREQ=DAILY";
      interval = pattern.period / minutes_of_day;
      break;
    case by_week:
      rule = "FREQ=WEEKLY";
      by = ";BYDAY=" + Weekdays(pattern.first) + ";WKST=" + Weekdays(1U << (pattern.week_start % 7));
      break;
    case by_month_day:
      by = Month_Day(pattern.first);
      break;
    case by_month_weekday: {
      if (pattern.second < 1 || pattern.second > 5) throw Unreadable{};
      by = ";BYDAY=" + Weekdays(pattern.first) +
           ";BYSETPOS=" + (pattern.second == 5 ? "-1" : std::to_string(pattern.second));
      break;
    }
    case by_month_end:
      by = ";BYMONTHDAY=-1";
      break;
    default:
      throw Unreadable{};
  }
  if (rule.empty()) {
    if (pattern.frequency != monthly && pattern.frequency != yearly) throw Unreadable{};
    const bool years = pattern.frequency == yearly && pattern.period % 12 == 0;
    rule = years ? "FREQ=YEARLY" : "FREQ=MONTHLY";
    if (years) {
      interval = pattern.period / 12;
      by = ";BYMONTH=" + std::to_string(Month_Of(first_day / minutes_of_day)) + by;
    }
  }
  if (interval == 0) throw Unreadable{};
  return rule + (interval == 1 ? "" : ";INTERVAL=" + std::to_string(interval)) + by;
}

struct Exception {
  Mapi_Occurrence occurrence;
  std::uint64_t flags;
};

void Skip_Text(Reader& reader) {
  reader.Take(2);
  reader.Take(reader.Number(2));
}

Exception Read_Exception(Reader& reader) {
  Exception exception{};
  exception.occurrence.start = reader.Minutes();
  exception.occurrence.end = reader.Minutes();
  exception.occurrence.original = reader.Minutes();
  exception.flags = reader.Number(2);
  const auto skip_numbers = [&](const auto& flags) {
    for (const std::uint64_t flag : flags)
      if ((exception.flags & flag) != 0) reader.Take(4);
  };
  // The texts are here in 8-bit characters, and further behind in all.
  if ((exception.flags & has_subject) != 0) Skip_Text(reader);
  skip_numbers(before_location);
  if ((exception.flags & has_location) != 0) Skip_Text(reader);
  skip_numbers(behind_location);
  return exception;
}

std::string Wide_Text(Reader& reader) {
  return One_Line(To_Utf8(reader.Take(2 * reader.Number(2)), "UTF-16LE"));
}

void Read_Texts(Reader& reader, std::uint64_t writer, std::vector<Exception>& exceptions) {
  reader.Take(reader.Number(4));
  for (Exception& exception : exceptions) {
    if (writer >= writer_with_highlights) reader.Take(reader.Number(4));
    reader.Take(reader.Number(4));
    if ((exception.flags & (has_subject | has_location)) == 0) continue;
    reader.Take(12);
    if ((exception.flags & has_subject) != 0) exception.occurrence.subject = Wide_Text(reader);
    if ((exception.flags & has_location) != 0) exception.occurrence.location = Wide_Text(reader);
    reader.Take(reader.Number(4));
  }
}

void Read_Appointment_Part(Reader& reader, Mapi_Series& series) {
  reader.Take(4);
  const std::uint64_t writer = reader.Number(4);
  series.start = reader.Minutes();
  series.end = reader.Minutes();
  const std::uint64_t count = reader.Number(2);
  std::vector<Exception> exceptions;
  for (std::uint64_t i = 0; i < count; ++i) exceptions.push_back(Read_Exception(reader));
  try {
    Read_Texts(reader, writer, exceptions);
  } catch (const Unreadable&) {
    // Old programs wrote none; the series is complete without.
  }
  for (Exception& exception : exceptions) {
    const std::int64_t day = exception.occurrence.original - exception.occurrence.original % minutes_of_day;
    std::erase(series.deleted, day);
    series.changed.push_back(std::move(exception.occurrence));
  }
}

}  // namespace

std::optional<Mapi_Series> Read_Mapi_Series(std::string_view bytes, bool of_appointment) {
  try {
    Reader reader(bytes);
    Mapi_Series series;
    Pattern pattern{};
    reader.Take(4);  // versions
    pattern.frequency = reader.Number(2);
    pattern.kind = reader.Number(2);
    reader.Take(2 + 4);  // the calendar, which the kind implies, and the first date's place in the period
    pattern.period = reader.Number(4);
    reader.Take(4);
    if (pattern.kind != by_day) pattern.first = reader.Number(4);
    if (pattern.kind == by_month_weekday) pattern.second = reader.Number(4);
    const std::uint64_t end = reader.Number(4);
    series.count = static_cast<std::uint32_t>(reader.Number(4));
    pattern.week_start = reader.Number(4);
    series.deleted = reader.Days();
    reader.Days();  // the days of changed occurrences
    series.first_day = reader.Minutes();
    series.last_day = reader.Minutes();
    series.rule = Rule(pattern, series.first_day);
    if (end == ends_on_date) series.end_kind = Mapi_Series::End::On_Day;
    if (end == ends_after_count && series.count > 0) series.end_kind = Mapi_Series::End::After_Count;
    if (of_appointment) Read_Appointment_Part(reader, series);
    return series;
  } catch (const Unreadable&) {
    return std::nullopt;
  }
}

}  // namespace tidyfold
