// The time zones of Outlook's appointments.
#pragma once

#include <libical/ical.h>

#include <string>
#include <string_view>

namespace tidyfold {

// The VTIMEZONE of a zone that Outlook describes by its present rules; nullptr if they are damaged. The
// caller owns it.
icalcomponent* Build_Time_Zone(std::string_view rules, const std::string& name);

}  // namespace tidyfold
