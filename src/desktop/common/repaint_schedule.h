// Limits how often widgets are repainted while their models change thousands of times a second.
#pragma once

#include <wx/timer.h>

#include <chrono>
#include <vector>

namespace tidyfold {

// A widget that does not follow every change of its model at once.
class Late_Widget {
 public:
  virtual ~Late_Widget() = default;
  virtual void Catch_Up() = 0;
};

// Updates marked widgets at most 25 times a second; the first change after a pause is shown at once. Works
// whenever events are dispatched: in the main loop, in a yield, in a message box.
class Repaint_Schedule {
 public:
  Repaint_Schedule();
  Repaint_Schedule(const Repaint_Schedule&) = delete;
  Repaint_Schedule& operator=(const Repaint_Schedule&) = delete;

  void Mark(Late_Widget& widget);
  void Forget(Late_Widget& widget);
  // Updates all marked widgets now.
  void Flush();

 private:
  wxTimer timer_;
  std::vector<Late_Widget*> marked_;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace tidyfold
