// Conversion between the models' twips and the screen's pixels.
#pragma once

#include <wx/window.h>

#include "controls/values.h"

namespace tidyfold {

// Follows the screen's text size, so that panes grow with their texts. Pixels are wxWidgets' logical pixels.
class Scale {
 public:
  explicit Scale(const wxWindow& window);
  // The window has come to a screen of another density.
  void Follow_Density(int dots_per_inch);

  int Pixels(Twips twips) const;
  Twips To_Twips(int pixels) const;

 private:
  double pixels_per_twip_;
};

}  // namespace tidyfold
