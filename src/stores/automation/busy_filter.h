// Retries calls that Outlook rejects because it is busy.
#pragma once

#include <chrono>

#include "stores/automation/com.h"

namespace tidyfold::com {

// Registers itself with the thread and restores the previous filter when it is destroyed.
class Busy_Filter {
 public:
  // Gives up on a call after this time.
  explicit Busy_Filter(std::chrono::milliseconds patience);
  Busy_Filter(const Busy_Filter&) = delete;
  Busy_Filter& operator=(const Busy_Filter&) = delete;
  ~Busy_Filter();

  // For systems that return the rejection to the caller instead of asking the filter: waits until the next
  // attempt is due. False when it is time to give up. `elapsed` is the time since the first attempt in
  // milliseconds.
  bool Wait_To_Call_Again(DWORD elapsed);

 private:
  Ptr<IMessageFilter> filter_, before_;
};

}  // namespace tidyfold::com
