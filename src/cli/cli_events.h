// Yields of the command line, which has no window to redraw.
#pragma once

#include <chrono>
#include <functional>

#include "controls/interaction.h"

namespace tidyfold::cli {

// Due by the clock: a yield that comes too early costs one clock reading.
class Cli_Events : public Events {
 public:
  void Do_Events() override;

  std::function<void()> due;
  // True if something cannot wait for the clock.
  std::function<bool()> urgent;

 private:
  std::chrono::steady_clock::time_point next_;
};

}  // namespace tidyfold::cli
