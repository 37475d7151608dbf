#include "base/local_calendar.h"

namespace tidyfold {

bool Local_Calendar(std::time_t time, std::tm& calendar) {
  return localtime_r(&time, &calendar) != nullptr;
}

}  // namespace tidyfold
