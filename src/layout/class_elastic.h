// Resizes a window's controls with the window.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "controls/widgets.h"

namespace tidyfold {

// Finds controls by name: some follow the window's width, some its height, some keep their distance from its
// right edge; others stay as they are. Sizes are twips, kept as 16-bit numbers.
class class_Elastic {
 public:
  // Once, when the controls have their designed sizes. Throws std::overflow_error for a window of more than
  // 32767 twips. The controls must live as long as this.
  void Init(const Form& form, std::span<Control* const> controls);
  // On each resize. The first one, which comes when the window is first shown, changes nothing.
  void FormResize(Form& form);

 private:
  struct Designed {
    Control* control;
    Twips left, height, width;
  };

  std::int16_t form_height_ = 0, form_width_ = 0;
  std::vector<Designed> controls_;
  bool first_resize_ = false;
};

}  // namespace tidyfold
