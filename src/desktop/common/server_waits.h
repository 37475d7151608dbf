// What the window does while the program waits for a mail server.
#pragma once

#include <wx/event.h>
#include <wx/eventfilter.h>
#include <wx/weakref.h>
#include <wx/window.h>

#include <functional>
#include <memory>
#include <vector>

namespace tidyfold {

// The window is painted, and what a person does is kept for afterwards, as whoever waits is in the middle of
// something. A wait that takes long is shown with a Cancel button of its own. A window that is to be closed
// ends the wait, and closes when it has ended.
class Server_Waits : public wxEventFilter {
 public:
  Server_Waits();
  Server_Waits(const Server_Waits&) = delete;
  Server_Waits& operator=(const Server_Waits&) = delete;
  ~Server_Waits() override;

  // For Store_Opening::wait.
  std::function<bool()> Begin();
  bool Are_Under_Way() const { return !waits_.empty(); }

  int FilterEvent(wxEvent& event) override;

 private:
  class Wait;

  std::vector<Wait*> waits_;  // the innermost last
  std::vector<wxWeakRef<wxWindow>> to_close_;
};

}  // namespace tidyfold
