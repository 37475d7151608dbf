#include "desktop/common/desktop_events.h"

#include <wx/app.h>
#include <wx/evtloop.h>

#include <algorithm>

namespace tidyfold {

namespace {

// The window must answer within 50 ms, including painting.
constexpr std::chrono::steady_clock::duration shortest_work = std::chrono::milliseconds(8);
constexpr std::chrono::steady_clock::duration longest_work = std::chrono::milliseconds(20);

}  // namespace

void Desktop_Events::Do_Events() {
  const auto start = std::chrono::steady_clock::now();
  if (start < next_) return;
  wxEventLoopBase* const loop = wxEventLoopBase::GetActive();
  if (loop == nullptr) return;
  if (loop->Pending() || wxTheApp->HasPendingEvents()) {
    if (before_yield) before_yield();
    loop->YieldFor(wxEVT_CATEGORY_ALL);
  }
  // The work gets as much time as the events took, within limits.
  const auto end = std::chrono::steady_clock::now();
  next_ = end + std::clamp(end - start, shortest_work, longest_work);
}

}  // namespace tidyfold
