// Work on a thread of its own, so that the window does not wait for it.
#pragma once

#include <wx/event.h>

#include <functional>
#include <stop_token>
#include <thread>

namespace tidyfold {

// One piece of work at a time, on a thread of its own.
class Background_Task {
 public:
  // Runs in the window's thread when the work is done.
  using Finish = std::function<void()>;
  // Must check the token often: starting other work and destroying the task wait for it.
  using Work = std::function<Finish(const std::stop_token&)>;

  // The owner receives the events and must own this task.
  explicit Background_Task(wxEvtHandler& owner) : owner_(owner) {}

  // Stops the current work without its Finish, and starts this.
  void Start(Work work) {
    thread_ = {};
    thread_ = std::jthread([this, number = ++number_, work = std::move(work)](const std::stop_token& stop) {
      owner_.CallAfter([this, number, finish = work(stop)] {
        if (number == number_) finish();
      });
    });
  }

 private:
  wxEvtHandler& owner_;
  int number_ = 0;
  std::jthread thread_;
};

}  // namespace tidyfold
