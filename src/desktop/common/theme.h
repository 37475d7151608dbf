// The models' colours as the user's theme shows them.
#pragma once

#include <wx/colour.h>

#include "controls/values.h"

namespace tidyfold {

wxColour Theme_Background();
wxColour Theme_Text();
// What a chosen row stands on: the theme's selection colour, thinned so far that text stays readable on it.
wxColour Theme_Chosen_Background();

// A model's text colour on `background`: black is the theme's own text colour, any other is moved towards
// black or white until it can be read.
wxColour Text_Colour(Colour colour, const wxColour& background);

// Of what is switched off: paler, and still to be made out.
wxColour Disabled_Text_Colour(const wxColour& background);

}  // namespace tidyfold
