// The one call for local time that every system spells in its own way.
#pragma once

#include <ctime>

namespace tidyfold {

// False where the system's calendar does not reach that far. May be called from any thread.
bool Local_Calendar(std::time_t time, std::tm& calendar);

}  // namespace tidyfold
