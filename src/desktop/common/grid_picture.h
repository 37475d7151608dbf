// Whether rows that are shown would be painted differently.
#pragma once

#include <cstdint>

#include "controls/flex_grid.h"

namespace tidyfold {

// A number that stands for everything that the rows `first` to `last` of the model show: texts, marks,
// weight, colour.
std::uint64_t Picture_Of_Rows(const FlexGrid& model, int first, int last);

}  // namespace tidyfold
