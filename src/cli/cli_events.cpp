#include "cli/cli_events.h"

namespace tidyfold::cli {

namespace {

constexpr auto period = std::chrono::milliseconds(10);

}  // namespace

void Cli_Events::Do_Events() {
  const auto now = std::chrono::steady_clock::now();
  if (now < next_ && !(urgent && urgent())) return;
  next_ = now + period;
  if (due) due();
}

}  // namespace tidyfold::cli
