// When a series of appointments ends.
#pragma once

#include <libical/ical.h>

#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

// A time of a component in the user's time zone; no_date if it is none.
Date Date_Of_Ical(const icaltimetype& time);

// The end of a component that does not recur, or of the first occurrence of one that does.
Date End_Of(icalcomponent* component);

// The end of the last occurrence. `parts` are the appointment and, behind it, the changed occurrences of its
// series. no_date if the series goes on for ever, or for so long that its end is not worth looking for. What
// costs too much to find out exactly is answered by a later date, never by an earlier one.
Date End_Of_Last_Occurrence(const std::vector<icalcomponent*>& parts);

}  // namespace tidyfold
