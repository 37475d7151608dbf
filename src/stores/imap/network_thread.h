// A thread that does one job after another.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "outlook/mail_store.h"
#include "stores/imap/transport.h"

namespace tidyfold::imap {

class Network_Thread {
 public:
  Network_Thread();
  Network_Thread(const Network_Thread&) = delete;
  Network_Thread& operator=(const Network_Thread&) = delete;
  // Interrupts the job under way; those that wait are not begun.
  ~Network_Thread();

  // From any thread. A job must not throw.
  void Post(std::function<void()> job);
  // From another thread: does a job and waits for it; what it throws is thrown here. Jobs that were posted
  // with Post_Last wait. What `wait` returns is called every few milliseconds meanwhile; once that has
  // returned false for most of a second, the job is interrupted.
  void Call(const std::function<void()>& job, const Begin_Wait& wait);
  // A job that makes way for others: begun when nothing else waits.
  void Post_Last(std::function<void()> job);
  // From another thread: waits in the same way for what the job under way brings, as `done` tells whenever
  // `changed` is notified. Throws Interrupted where the wait was given up before.
  void Await(std::unique_lock<std::mutex>& guard, std::condition_variable& changed,
             const std::function<bool()>& done, const Begin_Wait& wait);
  // For the job under way: whether others wait for it.
  bool Others_Wait() const;

  const Interruption& Interrupted_By() const { return interruption_; }

 private:
  void Work();
  bool Wait_Until(std::unique_lock<std::mutex>& guard, std::condition_variable& changed,
                  const std::function<bool()>& done, const Begin_Wait& wait);

  mutable std::mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_, last_;
  bool ending_ = false;
  Interruption interruption_;
  std::thread thread_;
};

}  // namespace tidyfold::imap
