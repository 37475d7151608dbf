#include "base/local_calendar.h"

namespace tidyfold {

bool Local_Calendar(std::time_t time, std::tm& calendar) {
  return localtime_s(&calendar, &time) == 0;
}

}  // namespace tidyfold
