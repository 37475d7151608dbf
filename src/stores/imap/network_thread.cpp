#include "stores/imap/network_thread.h"

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace tidyfold::imap {

namespace {

constexpr auto serving_every = std::chrono::milliseconds(20);
constexpr auto grace = std::chrono::milliseconds(700);

struct Outcome {
  std::mutex lock;
  std::condition_variable ended;
  bool is_done = false;
  std::exception_ptr failure;
};

}  // namespace

Network_Thread::Network_Thread() : thread_([this] { Work(); }) {}

Network_Thread::~Network_Thread() {
  {
    const std::lock_guard guard(lock_);
    ending_ = true;
    jobs_.clear();
    last_.clear();
  }
  interruption_.Set();
  changed_.notify_all();
  thread_.join();
}

void Network_Thread::Post(std::function<void()> job) {
  {
    const std::lock_guard guard(lock_);
    jobs_.push_back(std::move(job));
  }
  changed_.notify_all();
}

void Network_Thread::Post_Last(std::function<void()> job) {
  {
    const std::lock_guard guard(lock_);
    last_.push_back(std::move(job));
  }
  changed_.notify_all();
}

bool Network_Thread::Others_Wait() const {
  const std::lock_guard guard(lock_);
  return !jobs_.empty() || ending_;
}

void Network_Thread::Call(const std::function<void()>& job, const Begin_Wait& wait) {
  Outcome outcome;
  Post([&] {
    std::exception_ptr failure;
    try {
      job();
    } catch (...) {
      failure = std::current_exception();
    }
    const std::lock_guard guard(outcome.lock);
    outcome.failure = failure;
    outcome.is_done = true;
    outcome.ended.notify_all();
  });
  std::unique_lock guard(outcome.lock);
  Wait_Until(
      guard, outcome.ended, [&] { return outcome.is_done; }, wait);
  guard.unlock();
  if (outcome.failure != nullptr) std::rethrow_exception(outcome.failure);
}

void Network_Thread::Await(std::unique_lock<std::mutex>& guard, std::condition_variable& changed,
                           const std::function<bool()>& done, const Begin_Wait& wait) {
  if (!Wait_Until(guard, changed, done, wait)) throw Interrupted();
}

// False where the job was interrupted.
bool Network_Thread::Wait_Until(std::unique_lock<std::mutex>& guard, std::condition_variable& changed,
                                const std::function<bool()>& done, const Begin_Wait& wait) {
  std::function<bool()> serve;
  std::optional<std::chrono::steady_clock::time_point> given_up;
  bool interrupts = false;
  while (!changed.wait_for(guard, serving_every, done)) {
    if (!wait) continue;
    guard.unlock();
    bool go_on = false;
    try {
      if (!serve) serve = wait();
      go_on = serve();
    } catch (...) {
      // The job still works on what belongs to the caller.
    }
    const auto now = std::chrono::steady_clock::now();
    if (!go_on && !given_up) given_up = now;
    if (!go_on && now - *given_up > grace) {
      interruption_.Set();
      interrupts = true;
    }
    guard.lock();
  }
  if (interrupts) interruption_.Clear();
  return !interrupts;
}

void Network_Thread::Work() {
  for (;;) {
    std::function<void()> job;
    {
      std::unique_lock guard(lock_);
      changed_.wait(guard, [&] { return ending_ || !jobs_.empty() || !last_.empty(); });
      if (ending_) return;
      auto& queue = jobs_.empty() ? last_ : jobs_;
      job = std::move(queue.front());
      queue.pop_front();
    }
    job();
  }
}

}  // namespace tidyfold::imap
