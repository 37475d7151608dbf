// Yields that keep the window answering.
#pragma once

#include <chrono>
#include <functional>

#include "controls/interaction.h"

namespace tidyfold {

// A yield dispatches pending events: mouse, keys, painting, timers. It may happen inside a handler that runs
// inside another yield. Most yields only look at the clock, because the last one was a moment ago.
class Desktop_Events : public Events {
 public:
  // Runs before events are dispatched, and only then. The place to commit changes to a store.
  std::function<void()> before_yield;

  void Do_Events() override;

 private:
  std::chrono::steady_clock::time_point next_{};
};

}  // namespace tidyfold
