#include "desktop/common/server_waits.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/progdlg.h>
#include <wx/timer.h>

#include <algorithm>
#include <chrono>
#include <optional>

#include "controls/interaction.h"

namespace tidyfold {

namespace {

using Clock = std::chrono::steady_clock;

// Portions of what is loaded and moved take about a third of it.
constexpr auto long_wait = std::chrono::seconds(1);
constexpr int tick_again = 50;  // milliseconds

}  // namespace

class Server_Waits::Wait {
 public:
  explicit Wait(Server_Waits& waits) : waits_(waits) { waits_.waits_.push_back(this); }
  Wait(const Wait&) = delete;
  Wait& operator=(const Wait&) = delete;
  ~Wait() {
    std::erase(waits_.waits_, this);
    if (waits_.Are_Under_Way()) return;
    for (const auto& window : std::exchange(waits_.to_close_, {}))
      if (window)
        window->CallAfter([window] {
          if (window) window->Close();
        });
  }

  bool Go_On() {
    wxEventLoopBase* const loop = wxEventLoopBase::GetActive();
    if (loop == nullptr) return go_on_;
    if (!dialog_ && Clock::now() - begun_ > long_wait)
      dialog_.emplace(application_title, "Waiting for the mail store...", 100, nullptr,
                      wxPD_APP_MODAL | wxPD_CAN_ABORT);
    if (!dialog_) {
      loop->YieldFor(wxEVT_CATEGORY_UI);
    } else if (!dialog_->Pulse()) {
      go_on_ = false;
    }
    return go_on_;
  }
  bool Is_Shown_By(const wxObject* window) const { return dialog_ && &*dialog_ == window; }
  void Give_Up() { go_on_ = false; }

 private:
  Server_Waits& waits_;
  Clock::time_point begun_ = Clock::now();
  std::optional<wxProgressDialog> dialog_;
  bool go_on_ = true;
};

Server_Waits::Server_Waits() {
  wxEvtHandler::AddFilter(this);
}

Server_Waits::~Server_Waits() {
  wxEvtHandler::RemoveFilter(this);
}

std::function<bool()> Server_Waits::Begin() {
  return [wait = std::make_shared<Wait>(*this)] { return wait->Go_On(); };
}

int Server_Waits::FilterEvent(wxEvent& event) {
  if (!Are_Under_Way()) return Event_Skip;
  if (event.GetEventType() == wxEVT_TIMER) {
    wxTimer& timer = static_cast<wxTimerEvent&>(event).GetTimer();
    if (timer.IsOneShot()) timer.StartOnce(tick_again);
    return Event_Processed;
  }
  if (event.GetEventType() != wxEVT_CLOSE_WINDOW || waits_.back()->Is_Shown_By(event.GetEventObject()))
    return Event_Skip;
  auto& close = static_cast<wxCloseEvent&>(event);
  if (close.CanVeto()) close.Veto();
  for (Wait* const wait : waits_) wait->Give_Up();
  to_close_.emplace_back(wxDynamicCast(close.GetEventObject(), wxWindow));
  return Event_Processed;
}

}  // namespace tidyfold
