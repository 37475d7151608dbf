// Tells whether visible rows have to be painted again.
#pragma once

#include <cstdint>

#include "controls/flex_grid.h"

namespace tidyfold {

// A hash of everything that the rows at the places `first` to `last` show: texts, marks, weight, colour.
std::uint64_t Picture_Of_Rows(const FlexGrid& model, int first, int last);

}  // namespace tidyfold
