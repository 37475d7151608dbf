// What's This mode: the next click chooses a control, and does nothing else.
#pragma once

#include "desktop/common/control_finder.h"

namespace tidyfold {

// Changes the pointer and runs a nested event loop until a control is clicked, disabled ones included. Enter
// chooses the focused control. Returns null if the mode is left (by Esc, by a click elsewhere, by closing the
// window) or is on already.
class Whats_This_Pointer {
 public:
  Whats_This_Pointer(wxFrame& frame, MainWindow& window) : frame_(frame), finder_(frame, window) {}
  const Control* Choose();

 private:
  wxFrame& frame_;
  Control_Finder finder_;
  bool choosing_ = false;
};

}  // namespace tidyfold
