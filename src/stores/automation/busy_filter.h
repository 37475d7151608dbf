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

  // A person has given up: what fails while that unwinds is not waited for. Until a moment later, or until
  // patience is taken up again.
  void Lose_Patience();
  void Take_Up_Patience() { impatient_until_ = 0; }
  bool Is_Impatient() const { return GetTickCount64() < impatient_until_; }

 private:
  Ptr<IMessageFilter> filter_, before_;
  ULONGLONG impatient_until_ = 0;
};

}  // namespace tidyfold::com
