#include <wx/evtloop.h>
#include <wx/utils.h>

#include "desktop/common/whats_this_pointer.h"

namespace tidyfold {

// Captures the mouse, so that the frame gets every click.
const Control* Whats_This_Pointer::Choose() {
  if (choosing_) return nullptr;
  choosing_ = true;
  const wxCursor question(wxCURSOR_QUESTION_ARROW);
  const wxBusyCursor pointer(&question);
  wxGUIEventLoop loop;
  const Control* chosen = nullptr;
  bool pressed = false, left = false;
  const auto leave = [&](const Control* control) {
    if (left) return;
    left = true;
    chosen = control;
    loop.ScheduleExit();
  };
  const auto press = [&](wxMouseEvent&) { pressed = true; };
  const auto release = [&](wxMouseEvent& event) {
    if (pressed) leave(finder_.At(frame_.ClientToScreen(event.GetPosition())));
  };
  const auto key = [&](wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_ESCAPE) leave(nullptr);
    if (event.GetKeyCode() == WXK_RETURN) leave(finder_.Of_Widget(wxWindow::FindFocus()));
  };
  const auto lost = [&](wxMouseCaptureLostEvent&) { leave(nullptr); };
  const auto close = [&](wxCloseEvent& event) {
    leave(nullptr);
    event.Skip();
  };
  frame_.Bind(wxEVT_LEFT_DOWN, press);
  frame_.Bind(wxEVT_LEFT_UP, release);
  frame_.Bind(wxEVT_CHAR_HOOK, key);
  frame_.Bind(wxEVT_MOUSE_CAPTURE_LOST, lost);
  frame_.Bind(wxEVT_CLOSE_WINDOW, close);
  frame_.CaptureMouse();
  loop.Run();
  if (frame_.HasCapture()) frame_.ReleaseMouse();
  frame_.Unbind(wxEVT_LEFT_DOWN, press);
  frame_.Unbind(wxEVT_LEFT_UP, release);
  frame_.Unbind(wxEVT_CHAR_HOOK, key);
  frame_.Unbind(wxEVT_MOUSE_CAPTURE_LOST, lost);
  frame_.Unbind(wxEVT_CLOSE_WINDOW, close);
  choosing_ = false;
  return chosen;
}

}  // namespace tidyfold
