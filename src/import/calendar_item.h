// Reads an appointment, task or journal entry from iCalendar.
#pragma once

#include <string>

#include "outlook/store_writer.h"

namespace tidyfold {

// A calendar that holds one item, and perhaps the changed occurrences of its series and time zones. Its text
// becomes the raw form of an appointment or task. Throws Message_Error if there is no such item in it.
New_Item Read_Calendar_Item(std::string calendar);

}  // namespace tidyfold
