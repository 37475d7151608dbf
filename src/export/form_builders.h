// Builds an item's own form from what the store knows of it, where it came without one.
#pragma once

#include <string>

#include "outlook/store_writer.h"

namespace tidyfold {

// RFC 5322, with the attachments whose contents are there. People without an address get one that leads
// nowhere (RFC 2606).
std::string Build_Message(const New_Item& item);

// The same with text in 8 bits, so that anybody can read it.
std::string Build_Text(const New_Item& item);

// iCalendar with a VEVENT for an appointment, a VTODO for a task. What is not known of an appointment is when
// it begins; it begins when it ends.
std::string Build_Calendar(const New_Item& item);

// vCard 4.0; a distribution list is a group.
std::string Build_Card(const New_Item& item);

}  // namespace tidyfold
