// Yields that keep the window answering.
#pragma once

#include <chrono>
#include <functional>

#include "controls/interaction.h"

namespace tidyfold {

// A yield dispatches what is due: mouse, keys, painting, timers. It may happen inside a handler that runs
// inside another yield. Most yields find, by the clock alone, that the last one was a moment ago, and return.
class Desktop_Events : public Events {
 public:
  // Runs before events are dispatched, and only then: the place to bring a store into a state that lasts.
  std::function<void()> before_yield;

  void Do_Events() override;

 private:
  std::chrono::steady_clock::time_point next_{};
};

}  // namespace tidyfold
