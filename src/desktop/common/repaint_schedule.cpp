#include "desktop/common/repaint_schedule.h"

#include <algorithm>

namespace tidyfold {

namespace {
constexpr std::chrono::milliseconds pace{40};
}

Repaint_Schedule::Repaint_Schedule() {
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Flush(); });
}

void Repaint_Schedule::Mark(Late_Widget& widget) {
  if (std::find(marked_.begin(), marked_.end(), &widget) != marked_.end()) return;
  marked_.push_back(&widget);
  if (timer_.IsRunning()) return;
  const auto rest =
      std::chrono::duration_cast<std::chrono::milliseconds>(last_ + pace - std::chrono::steady_clock::now());
  timer_.StartOnce(static_cast<int>(std::clamp<std::int64_t>(rest.count(), 1, pace.count())));
}

void Repaint_Schedule::Forget(Late_Widget& widget) {
  std::erase(marked_, &widget);
}

void Repaint_Schedule::Flush() {
  timer_.Stop();
  // One at a time: Catch_Up may mark other widgets or remove one.
  for (auto turns = marked_.size(); turns > 0 && !marked_.empty(); --turns) {
    Late_Widget* const widget = marked_.front();
    marked_.erase(marked_.begin());
    widget->Catch_Up();
  }
  last_ = std::chrono::steady_clock::now();
  if (!marked_.empty() && !timer_.IsRunning()) timer_.StartOnce(static_cast<int>(pace.count()));
}

}  // namespace tidyfold
