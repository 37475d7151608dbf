// When widgets catch up with models that change thousands of times a second.
#pragma once

#include <wx/timer.h>

#include <chrono>
#include <vector>

namespace tidyfold {

// A widget that need not follow every change of its model at once.
class Late_Widget {
 public:
  virtual ~Late_Widget() = default;
  virtual void Catch_Up() = 0;
};

// Lets marked widgets catch up at most 25 times a second: the first change after a rest at once, the rest
// together. It works whenever events are dispatched, in a yield or a message box as well as in the main loop.
class Repaint_Schedule {
 public:
  Repaint_Schedule();
  Repaint_Schedule(const Repaint_Schedule&) = delete;
  Repaint_Schedule& operator=(const Repaint_Schedule&) = delete;

  void Mark(Late_Widget& widget);
  void Forget(Late_Widget& widget);
  // Everything that is marked, now.
  void Flush();

 private:
  wxTimer timer_;
  std::vector<Late_Widget*> marked_;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace tidyfold
