// The models' colours as the user's theme shows them.
#pragma once

#include <wx/colour.h>

#include "controls/values.h"

namespace tidyfold {

wxColour Theme_Background();
wxColour Theme_Text();
// The background of a selected row: the theme's selection colour, moved until its brightness differs clearly
// from that of other rows and text is readable on it.
wxColour Theme_Chosen_Background();
wxColour Theme_Chosen_Text();

// A model's text colour on `background`: black is the theme's own text colour, any other is moved towards
// black or white until it can be read.
wxColour Text_Colour(Colour colour, const wxColour& background);

// For disabled controls: paler, but still readable.
wxColour Disabled_Text_Colour(const wxColour& background);
wxColour Faded(const wxColour& text, const wxColour& background);

}  // namespace tidyfold
