// Dates as people write them.
#pragma once

#include <optional>
#include <string_view>

#include "base/dates.h"

namespace tidyfold {

// The date that a text names: year, month and day in this order where it begins with four digits, otherwise
// in the order of `form`, a date format as strftime takes it ("%d.%m.%Y"). Separators are blanks and "/.-,",
// and those of the form. Of years with two digits, 00 to 68 are 2000 to 2068, the others 1969 to 1999, as
// strptime has it. Nothing for any other text and for days that no calendar has. A form with names of months
// is not read.
std::optional<Date> Read_Date(std::string_view text, std::string_view form);

}  // namespace tidyfold
