// What a calendar part makes of the message that carries it.
#pragma once

#include <cstdint>
#include <string_view>

namespace tidyfold {

// The item class of a message with this iCalendar text: a meeting request, cancellation or response, else
// mail. The method is the one that the part's header names; where that is empty, the text's own counts.
std::int32_t Meeting_Class(std::string_view calendar, std::string_view method);

}  // namespace tidyfold
