// The item class of messages with a calendar part.
#pragma once

#include <cstdint>
#include <string_view>

namespace tidyfold {

// The item class of a message with this iCalendar text: a meeting request, cancellation or response, else
// mail. The method is that of the part's header; if empty, that of the text itself.
std::int32_t Meeting_Class(std::string_view calendar, std::string_view method);

}  // namespace tidyfold
