// The pictures in front of a cell's text.
#pragma once

#include <wx/colour.h>
#include <wx/dc.h>

#include "controls/flex_grid.h"

namespace tidyfold {

// A picture is as high as the text beside it, in pixels of the device.
int Cell_Picture_Side(int character_height);

// Fills the square; lines and areas are of one colour.
void Draw_Cell_Picture(wxDC& dc, Cell_Picture picture, const wxRect& square, const wxColour& ink);

}  // namespace tidyfold
