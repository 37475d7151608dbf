// What's This mode: the next click chooses a control, and does nothing else.
#pragma once

#include "desktop/common/control_finder.h"

namespace tidyfold {

// Changes the pointer and runs an event loop of its own until something was clicked, enabled or not, or the
// mode was left: by Esc, by a click elsewhere, or because the window is closed. Enter chooses what has the
// keyboard. Returns none where the mode was left, or is on already.
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
