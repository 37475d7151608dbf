// The pictures in front of a cell's text.
#pragma once

#include <wx/colour.h>
#include <wx/dc.h>

#include "controls/flex_grid.h"

namespace tidyfold {

// Unscaled pixels.
inline constexpr int cell_picture_side = 14;

// Fills the square; lines and areas are of one colour.
void Draw_Cell_Picture(wxDC& dc, Cell_Picture picture, const wxRect& square, const wxColour& ink);

}  // namespace tidyfold
