// The list in words, for who does not see it.
#pragma once

#include <string>

#include "controls/flex_grid.h"

namespace tidyfold {

// Of the current row its texts, whether it is unread, and its place: "Mail, Anna Holloway, Photos,
// 2026-05-05, will go, row 8 of 531". How many rows there are where none is current; why there are none where
// the list is empty.
std::string Words_Of_List(const FlexGrid& grid);

// The columns in the order in which they are shown, and by which of them the rows are sorted.
std::string Words_Of_Header(const FlexGrid& grid);

}  // namespace tidyfold
