// A splitter between two panes that lie side by side.
#pragma once

#include "controls/widgets.h"

namespace tidyfold {

// The bar follows the mouse while its button is held; the panes on either side are resized on release. All
// positions are twips.
class SliderBar {
 public:
  bool ResizingWindows = false;

  // Sets the panes beside the bar. A bar width of 0 or less keeps the present width.
  void Setup(Control& left, Control& right, PictureBox& bar, int bar_width);
  void Mouse_Down() { ResizingWindows = true; }
  // x is the mouse's position inside the bar.
  void Mouse_Move(Twips x);
  // The right pane keeps its right edge; a pane's width is never negative.
  void Mouse_Up();
  // Whether a pane does not touch the bar.
  bool Needs_Applying() const;

 private:
  Control* left_ = nullptr;
  Control* right_ = nullptr;
  PictureBox* bar_ = nullptr;
};

}  // namespace tidyfold
