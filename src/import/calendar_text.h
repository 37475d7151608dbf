// iCalendar (RFC 5545) as text: finds the items of a calendar without changing a byte of them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold {

// Refers to the text that it was found in.
struct Calendar_Item {
  std::string kind;     // "VEVENT" and so on, in upper case
  std::string problem;  // why it cannot be read; empty if it can
  std::shared_ptr<const std::string> head;
  std::vector<std::string_view> parts;
  std::string_view tail;

  // A calendar of its own: the calendar's properties, the time zones that the item names, the item, and the
  // changed occurrences of its series.
  std::string Calendar() const;
};

// The items of all calendars in the text, which must outlive them. Time zones are none.
std::vector<Calendar_Item> Items_Of_Calendars(std::string_view text);

}  // namespace tidyfold
