// What becomes of calls that Outlook turns away because it is busy: they are made again, for a while.
#pragma once

#include <chrono>

#include "stores/automation/com.h"

namespace tidyfold::com {

// Registered with the thread for as long as it lives; the filter that stood there before is put back.
class Busy_Filter {
 public:
  // Calls are made again for so long.
  explicit Busy_Filter(std::chrono::milliseconds patience);
  Busy_Filter(const Busy_Filter&) = delete;
  Busy_Filter& operator=(const Busy_Filter&) = delete;
  ~Busy_Filter();

  // For a system that hands the refusal to the caller instead of asking the filter: waits until the call is
  // to be made again. False when it has been tried for long enough. `elapsed` counts milliseconds since the
  // call was first made.
  bool Wait_To_Call_Again(DWORD elapsed);

 private:
  Ptr<IMessageFilter> filter_, before_;
};

}  // namespace tidyfold::com
