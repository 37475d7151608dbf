// Builds iCalendar from Outlook's appointments and tasks.
#pragma once

#include <string>

#include "import/mapi.h"
#include "outlook/object_model.h"

namespace tidyfold {

struct Mapi_Appointment {
  std::string calendar;  // one VCALENDAR
  // Of a series, the end of its last occurrence; no_date if it goes on for ever.
  Date end = no_date;
};

// Both throw Message_Error if the file is damaged. `body` is the item's text.
Mapi_Appointment Build_Appointment(const Mapi_Item& item, const std::string& body);
std::string Build_Task(const Mapi_Item& item, const std::string& body);

}  // namespace tidyfold
