#include "import/mapi_calendar.h"

#include <libical/ical.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "import/calendar_item.h"
#include "import/mapi_recurrence.h"
#include "import/mapi_time_zone.h"
#include "mail/charset.h"
#include "mail/local_date.h"

namespace tidyfold {
namespace {

constexpr Named_Property appointment_start{mapi_set::appointment, 0x820D},
    appointment_end{mapi_set::appointment, 0x820E}, location{mapi_set::appointment, 0x8208},
    all_day{mapi_set::appointment, 0x8215}, busy_status{mapi_set::appointment, 0x8205},
    series_pattern{mapi_set::appointment, 0x8216}, is_recurring{mapi_set::appointment, 0x8223},
    zone_rules{mapi_set::appointment, 0x8233}, zone_name{mapi_set::appointment, 0x8234},
    series_end{mapi_set::appointment, 0x8236}, global_id{mapi_set::meeting, 0x0003},
    clean_global_id{mapi_set::meeting, 0x0023}, task_status{mapi_set::task, 0x8101},
    part_complete{mapi_set::task, 0x8102}, task_start{mapi_set::task, 0x8104},
    task_due{mapi_set::task, 0x8105}, task_completed{mapi_set::task, 0x810F},
    task_pattern{mapi_set::task, 0x8116}, task_recurs{mapi_set::task, 0x8126};

constexpr std::int64_t filetime_second = 10'000'000, seconds_to_1970 = 11'644'473'600;
constexpr std::uint32_t free_time = 0, track_organizer = 1, track_tentative = 2, track_accepted = 3,
                        track_declined = 4, recipient_is_organizer = 2, optional_recipient = 2;
constexpr std::uint32_t task_complete = 2, task_in_progress = 1;

using Component = std::unique_ptr<icalcomponent, decltype(&icalcomponent_free)>;
using Zone = std::unique_ptr<icaltimezone, void (*)(icaltimezone*)>;

void Free_Zone(icaltimezone* zone) {
  icaltimezone_free(zone, 1);
}

icaltimetype Utc(std::uint64_t filetime) {
  const auto seconds = static_cast<std::int64_t>(filetime / filetime_second) - seconds_to_1970;
  return icaltime_from_timet_with_zone(seconds, 0, icaltimezone_get_utc_timezone());
}

// Minutes since 1601, in no zone.
icaltimetype Floating(std::int64_t minutes) {
  icaltimetype time = icaltime_from_timet_with_zone(minutes * 60 - seconds_to_1970, 0, nullptr);
  time.zone = nullptr;
  return time;
}

icaltimetype Whole_Day(icaltimetype time) {
  time.is_date = 1;
  time.hour = time.minute = time.second = 0;
  return time;
}

// The midnight that is nearest: a whole day of another time zone is no whole day here.
icaltimetype Whole_Day(std::uint64_t filetime) {
  constexpr std::int64_t days_from_1601_to_epoch = 109'205;  // to 1899-12-30
  const Date date = Local_Date_From_Filetime(filetime);
  if (date == no_date) return Whole_Day(Utc(filetime));
  return Whole_Day(
      Floating((static_cast<std::int64_t>(std::floor(date + 0.5)) + days_from_1601_to_epoch) * 24 * 60));
}

std::string Hex(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    hex += digits[byte >> 4];
    hex += digits[byte & 15];
  }
  return hex;
}

class Builder {
 public:
  Builder(const Mapi_Item& item, icalcomponent_kind kind)
      : item_(item),
        properties_(item.Properties()),
        calendar_(icalcomponent_new_vcalendar(), icalcomponent_free),
        zone_(nullptr, Free_Zone),
        part_(icalcomponent_new(kind)) {
    icalerror_set_errors_are_fatal(0);
    icalcomponent_add_property(calendar_.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar_.get(), icalproperty_new_prodid("-//Tidyfold//Import//EN"));
    icalcomponent_add_component(calendar_.get(), part_);
  }

  const Mapi_Properties& Properties() const { return properties_; }
  icalcomponent* Part() const { return part_; }
  void Add(icalproperty* property) { icalcomponent_add_property(part_, property); }

  // What appointments and tasks have in common.
  void Add_Common(const std::string& body) {
    std::string id = properties_.Bytes(clean_global_id).value_or(std::string());
    if (id.empty()) id = properties_.Bytes(global_id).value_or(std::string());
    if (id.empty()) id = properties_.Bytes(mapi_property::search_key).value_or(std::string());
    if (!id.empty()) Add_Text(icalproperty_new_uid, Hex(id));
    const auto changed = properties_.Time(mapi_property::last_modification_time);
    const auto created = properties_.Time(mapi_property::creation_time);
    // A stamp has to be there, and must not differ from one import to the next.
    Add(icalproperty_new_dtstamp(Utc(changed.value_or(created.value_or(seconds_to_1970 * filetime_second)))));
    if (changed) Add(icalproperty_new_lastmodified(Utc(*changed)));
    if (created) Add(icalproperty_new_created(Utc(*created)));
    Add_Text(icalproperty_new_summary, One_Line(properties_.Subject()));
    Add_Text(icalproperty_new_description, body);
    const std::uint32_t importance = properties_.Number(mapi_property::importance).value_or(1);
    if (importance != 1) Add(icalproperty_new_priority(importance == 0 ? 9 : 1));
  }

  template <class Make>
  void Add_Text(Make make, std::string text) {
    std::erase(text, '\r');
    if (!text.empty()) Add(make(text.c_str()));
  }

  void Add_People() {
    for (const auto& recipient : item_.Recipients()) {
      const std::string address = Recipient_Address(*recipient);
      const std::string name = recipient->First_Text(mapi_property::display_name);
      if (address.empty() && name.empty()) continue;
      const std::uint32_t track = recipient->Number(mapi_property::recipient_track_status).value_or(0);
      const std::uint32_t flags = recipient->Number(mapi_property::recipient_flags).value_or(0);
      const bool organizer = track == track_organizer || (flags & recipient_is_organizer) != 0;
      // An address has to be there; one that leads nowhere stands for none.
      const std::string link = address.empty() ? "invalid:nomail" : "mailto:" + address;
      icalproperty* person =
          organizer ? icalproperty_new_organizer(link.c_str()) : icalproperty_new_attendee(link.c_str());
      if (!name.empty()) icalproperty_add_parameter(person, icalparameter_new_cn(Quotable(name).c_str()));
      if (!organizer) {
        if (recipient->Number(mapi_property::recipient_type).value_or(1) == optional_recipient)
          icalproperty_add_parameter(person, icalparameter_new_role(ICAL_ROLE_OPTPARTICIPANT));
        icalparameter_partstat state = ICAL_PARTSTAT_NEEDSACTION;
        if (track == track_tentative) state = ICAL_PARTSTAT_TENTATIVE;
        if (track == track_accepted) state = ICAL_PARTSTAT_ACCEPTED;
        if (track == track_declined) state = ICAL_PARTSTAT_DECLINED;
        icalproperty_add_parameter(person, icalparameter_new_partstat(state));
      }
      Add(person);
    }
  }

  void Add_Zone() {
    const auto rules = properties_.Bytes(zone_rules);
    if (!rules) return;
    icalcomponent* built = Build_Time_Zone(*rules, Quotable(properties_.First_Text(zone_name)));
    if (built == nullptr) return;
    icalcomponent_add_component(calendar_.get(), built);
    zone_.reset(icaltimezone_new());
    icaltimezone_set_component(zone_.get(), icalcomponent_new_clone(built));
    name_ = icaltimezone_get_tzid(zone_.get());
  }

  void Add_Series(const Mapi_Series& series, bool whole_days) {
    whole_days_ = whole_days;
    icalrecurrencetype rule = icalrecurrencetype_from_string(series.rule.c_str());
    if (series.end_kind == Mapi_Series::End::After_Count)
      rule.count = static_cast<int>(std::min<std::uint32_t>(series.count, 1'000'000));
    if (series.end_kind == Mapi_Series::End::On_Day) rule.until = Until(series.last_day + series.start);
    Add(icalproperty_new_rrule(rule));
    for (const std::int64_t day : series.deleted) {
      Add_Time(part_, icalproperty_new_exdate(Shown(day + series.start)));
    }
  }

  // A time of the series, in its zone.
  void Add_Time(icalcomponent* part, icalproperty* property) {
    if (zone_ && !whole_days_) icalproperty_add_parameter(property, icalparameter_new_tzid(name_.c_str()));
    icalcomponent_add_property(part, property);
  }

  icaltimetype Shown(std::int64_t minutes) const {
    return whole_days_ ? Whole_Day(Floating(minutes)) : Floating(minutes);
  }

  void Add_Changed(const Mapi_Occurrence& changed) {
    icalcomponent* part = icalcomponent_new_clone(part_);
    for (const icalproperty_kind kind :
         {ICAL_RRULE_PROPERTY, ICAL_EXDATE_PROPERTY, ICAL_DTSTART_PROPERTY, ICAL_DTEND_PROPERTY}) {
      while (icalproperty* property = icalcomponent_get_first_property(part, kind)) {
        icalcomponent_remove_property(part, property);
        icalproperty_free(property);
      }
    }
    Add_Time(part, icalproperty_new_recurrenceid(Shown(changed.original)));
    Add_Time(part, icalproperty_new_dtstart(Shown(changed.start)));
    Add_Time(part, icalproperty_new_dtend(Shown(changed.end)));
    if (changed.subject) icalcomponent_set_summary(part, changed.subject->c_str());
    if (changed.location) icalcomponent_set_location(part, changed.location->c_str());
    icalcomponent_add_component(calendar_.get(), part);
  }

  std::string Text() const {
    const std::unique_ptr<char, decltype(&icalmemory_free_buffer)> text(
        icalcomponent_as_ical_string_r(calendar_.get()),
        [](void* buffer) { icalmemory_free_buffer(buffer); });
    return text ? std::string(text.get()) : std::string();
  }

 private:
  // Parameters cannot hold quotation marks.
  static std::string Quotable(std::string text) {
    std::replace(text.begin(), text.end(), '"', '\'');
    return text;
  }

  // In UTC where the series has a zone.
  icaltimetype Until(std::int64_t minutes) const {
    icaltimetype time = Shown(minutes);
    if (!zone_ || whole_days_) return time;
    time.zone = zone_.get();
    return icaltime_convert_to_zone(time, icaltimezone_get_utc_timezone());
  }

  const Mapi_Item& item_;
  const Mapi_Properties& properties_;
  Component calendar_;
  Zone zone_;
  std::string name_;
  icalcomponent* part_;
  bool whole_days_ = false;
};

Date Local(const std::optional<std::uint64_t>& filetime) {
  return filetime ? Local_Date_From_Filetime(*filetime) : no_date;
}

}  // namespace

Mapi_Appointment Build_Appointment(const Mapi_Item& item, const std::string& body) {
  Builder builder(item, ICAL_VEVENT_COMPONENT);
  const Mapi_Properties& properties = builder.Properties();
  builder.Add_Common(body);
  builder.Add_Text(icalproperty_new_location, properties.First_Text(location));
  builder.Add_People();
  if (properties.Number(busy_status).value_or(1) == free_time)
    builder.Add(icalproperty_new_transp(ICAL_TRANSP_TRANSPARENT));

  auto start = properties.Time(appointment_start), end = properties.Time(appointment_end);
  if (!start) start = properties.Time(mapi_property::start_date);
  if (!end) end = properties.Time(mapi_property::end_date);
  const bool whole_days = properties.Flag(all_day);
  const auto pattern = properties.Bytes(series_pattern);
  const auto series =
      pattern && properties.Flag(is_recurring) ? Read_Mapi_Series(*pattern, true) : std::nullopt;

  Mapi_Appointment appointment;
  if (series) {
    if (!whole_days) builder.Add_Zone();
    builder.Add_Series(*series, whole_days);
    builder.Add_Time(builder.Part(),
                     icalproperty_new_dtstart(builder.Shown(series->first_day + series->start)));
    builder.Add_Time(builder.Part(), icalproperty_new_dtend(builder.Shown(series->first_day + series->end)));
    for (const Mapi_Occurrence& changed : series->changed) builder.Add_Changed(changed);
    appointment.calendar = builder.Text();
    appointment.end = Read_Calendar_Item(appointment.calendar).end;
    return appointment;
  }
  if (start) builder.Add(icalproperty_new_dtstart(whole_days ? Whole_Day(*start) : Utc(*start)));
  if (end) builder.Add(icalproperty_new_dtend(whole_days ? Whole_Day(*end) : Utc(*end)));
  appointment.calendar = builder.Text();
  // A series whose pattern cannot be read still tells its last day; without one it goes on for ever.
  appointment.end = properties.Flag(is_recurring) ? Local(properties.Time(series_end)) : Local(end);
  return appointment;
}

std::string Build_Task(const Mapi_Item& item, const std::string& body) {
  Builder builder(item, ICAL_VTODO_COMPONENT);
  const Mapi_Properties& properties = builder.Properties();
  builder.Add_Common(body);
  // Their days have no time zone, their completion has one.
  const auto day = [](std::uint64_t filetime) { return Whole_Day(Utc(filetime)); };
  if (const auto start = properties.Time(task_start)) builder.Add(icalproperty_new_dtstart(day(*start)));
  if (const auto due = properties.Time(task_due)) builder.Add(icalproperty_new_due(day(*due)));
  if (const auto completed = properties.Time(task_completed))
    builder.Add(icalproperty_new_completed(Utc(*completed)));
  const std::uint32_t status = properties.Number(task_status).value_or(0);
  if (status == task_complete) builder.Add(icalproperty_new_status(ICAL_STATUS_COMPLETED));
  if (status == task_in_progress) builder.Add(icalproperty_new_status(ICAL_STATUS_INPROCESS));
  const double part = properties.Real(part_complete).value_or(0);
  if (part > 0 && part <= 1)
    builder.Add(icalproperty_new_percentcomplete(static_cast<int>(std::lround(part * 100))));
  const auto pattern = properties.Bytes(task_pattern);
  if (pattern && properties.Flag(task_recurs)) {
    if (const auto series = Read_Mapi_Series(*pattern, false)) builder.Add_Series(*series, true);
  }
  return builder.Text();
}

}  // namespace tidyfold
