// Yields that a test controls: queued actions run inside Do_Events, like the handlers of a real window.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "controls/interaction.h"

namespace tidyfold {

class Fake_Events : public Events {
 public:
  Fake_Events() = default;
  Fake_Events(const Fake_Events&) = delete;
  Fake_Events& operator=(const Fake_Events&) = delete;
  // An action that never ran fails the test.
  ~Fake_Events() override { EXPECT_EQ(Waiting(), 0U) << "actions queued for a yield that never came"; }

  // At the n-th yield from the start, counted from 1.
  void At_Yield(int number, std::function<void()> action) {
    When([this, number] { return yields_ >= number; }, std::move(action));
  }
  // Once, at the first yield at which the condition holds.
  void When(std::function<bool()> condition, std::function<void()> action) {
    waiting_.emplace_back(std::move(condition), std::move(action));
  }

  int Yields() const { return yields_; }
  std::size_t Waiting() const { return waiting_.size(); }
  void Forget_Waiting() { waiting_.clear(); }

  void Do_Events() override {
    ++yields_;
    // An action may yield and queue others; each is taken out before it runs.
    for (std::size_t next = 0; next < waiting_.size();) {
      if (!waiting_[next].first()) {
        ++next;
        continue;
      }
      const std::function<void()> action = std::move(waiting_[next].second);
      waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(next));
      action();
      next = 0;
    }
  }

 private:
  int yields_ = 0;
  std::vector<std::pair<std::function<bool()>, std::function<void()>>> waiting_;
};

}  // namespace tidyfold
