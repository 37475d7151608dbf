// Twips of the models to pixels of the screen and back.
#pragma once

#include <wx/window.h>

#include "controls/values.h"

namespace tidyfold {

// Follows the size of the screen's text, so that panes grow with what stands in them. All pixels are those
// that the toolkit counts in.
class Scale {
 public:
  explicit Scale(const wxWindow& window);

  int Pixels(Twips twips) const;
  Twips To_Twips(int pixels) const;

 private:
  double pixels_per_twip_;
};

}  // namespace tidyfold
