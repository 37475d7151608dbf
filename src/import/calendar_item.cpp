#include "import/calendar_item.h"

#include <libical/ical.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "import/recurrence.h"
#include "mail/charset.h"
#include "mail/kept_fields.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

using Component = std::unique_ptr<icalcomponent, decltype(&icalcomponent_free)>;

std::string Text(icalcomponent* component, icalproperty_kind kind) {
  icalproperty* property = icalcomponent_get_first_property(component, kind);
  if (property == nullptr) return {};
  const char* text = icalvalue_get_text(icalproperty_get_value(property));
  return text == nullptr ? std::string() : Valid_Utf8(text);
}

Date Time(icalcomponent* component, icalproperty_kind kind) {
  icalproperty* property = icalcomponent_get_first_property(component, kind);
  return property == nullptr ? no_date
                             : Date_Of_Ical(icalproperty_get_datetime_with_component(property, component));
}

std::string Without_Scheme(std::string_view address) {
  constexpr std::string_view scheme = "mailto:";
  return One_Line(Begins_Ignoring_Case(address, scheme) ? address.substr(scheme.size()) : address);
}

// The name of an organiser or attendee, or else the address.
std::string Person(icalproperty* property, const char* address) {
  icalparameter* name = icalproperty_get_first_parameter(property, ICAL_CN_PARAMETER);
  const char* text = name == nullptr ? nullptr : icalparameter_get_cn(name);
  if (text != nullptr && *text != '\0') return One_Line(text);
  return address == nullptr ? std::string() : Without_Scheme(address);
}

void Read_People(icalcomponent* component, New_Item& item) {
  if (icalproperty* organizer = icalcomponent_get_first_property(component, ICAL_ORGANIZER_PROPERTY)) {
    const char* address = icalproperty_get_organizer(organizer);
    item.sender = Person(organizer, address);
    if (address != nullptr) item.sender_address = Without_Scheme(address);
  }
  for (icalproperty* attendee = icalcomponent_get_first_property(component, ICAL_ATTENDEE_PROPERTY);
       attendee != nullptr; attendee = icalcomponent_get_next_property(component, ICAL_ATTENDEE_PROPERTY)) {
    if (!item.recipients.empty()) item.recipients += "; ";
    item.recipients += Person(attendee, icalproperty_get_attendee(attendee));
  }
}

// The appointment itself, then its changed occurrences.
std::vector<icalcomponent*> Parts(icalcomponent* calendar) {
  std::vector<icalcomponent*> parts;
  for (icalcomponent* part = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); part != nullptr;
       part = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT)) {
    const icalcomponent_kind kind = icalcomponent_isa(part);
    if (kind == ICAL_VEVENT_COMPONENT || kind == ICAL_VTODO_COMPONENT || kind == ICAL_VJOURNAL_COMPONENT)
      parts.push_back(part);
  }
  return parts;
}

}  // namespace

New_Item Read_Calendar_Item(std::string calendar) {
  const std::vector<Kept_Field> kept = Take_Kept_Fields(calendar);
  icalerror_set_errors_are_fatal(0);
  const Component parsed(icalparser_parse_string(calendar.c_str()), icalcomponent_free);
  if (!parsed) throw Message_Error("it is no iCalendar");
  const std::vector<icalcomponent*> parts = Parts(parsed.get());
  if (parts.empty()) throw Message_Error("its kind is not known");
  icalcomponent* first = parts.front();

  New_Item item;
  item.subject = One_Line(Text(first, ICAL_SUMMARY_PROPERTY));
  item.body = Text(first, ICAL_DESCRIPTION_PROPERTY);
  Read_People(first, item);
  item.last_modified = Time(first, ICAL_LASTMODIFIED_PROPERTY);
  if (item.last_modified == no_date) item.last_modified = Time(first, ICAL_DTSTAMP_PROPERTY);
  item.size = static_cast<std::int64_t>(calendar.size());
  switch (icalcomponent_isa(first)) {
    case ICAL_VEVENT_COMPONENT:
      item.item_class = item_class::appointment;
      item.end = End_Of_Last_Occurrence(parts);
      break;
    case ICAL_VTODO_COMPONENT:
      item.item_class = item_class::task;
      item.due = Time(first, ICAL_DUE_PROPERTY);
      item.completed = Time(first, ICAL_COMPLETED_PROPERTY);
      break;
    default:
      item.item_class = item_class::journal;
      item.end = Time(first, ICAL_DTSTART_PROPERTY);
      return item;
  }
  Set_Kept_Fields(kept, item);
  if (!Has_No_Own_Form(kept)) item.raw_message = std::move(calendar);
  return item;
}

}  // namespace tidyfold
