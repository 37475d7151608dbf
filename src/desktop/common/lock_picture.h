// The lock in front of a protected folder.
#pragma once

#include <wx/bmpbndl.h>
#include <wx/colour.h>

namespace tidyfold {

// Unscaled pixels.
inline constexpr int lock_side = 16;

// Drawn here, as not every build of wxWidgets reads SVG.
wxBitmapBundle Lock_Picture(const wxColour& colour);

}  // namespace tidyfold
