// clang-format off
#include <windows.h>
// clang-format on

#include <wx/evtloop.h>
#include <wx/menu.h>
#include <wx/utils.h>

#include <functional>

#include "desktop/common/whats_this_pointer.h"

namespace tidyfold {

namespace {

bool Menu_Is_Open() {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  return GetGUIThreadInfo(GetCurrentThreadId(), &info) != FALSE && (info.flags & GUI_INMENUMODE) != 0;
}

bool Is_On_Menu_Bar(const wxFrame& frame, const wxPoint& place) {
  MENUBARINFO bar{};
  bar.cbSize = sizeof bar;
  return GetMenuBarInfo(frame.GetHandle(), OBJID_MENU, 0, &bar) != FALSE &&
         PtInRect(&bar.rcBar, {place.x, place.y}) != FALSE;
}

// What would run an entry of an open menu chooses it instead. The system takes these clicks and keys itself,
// and those on disabled entries for none.
class Menu_Watch {
 public:
  // `choose` returns false where no entry is highlighted.
  explicit Menu_Watch(std::function<bool()> choose) {
    chosen_ = std::move(choose);
    hook_ = SetWindowsHookExW(WH_MSGFILTER, &Menu_Watch::Take, nullptr, GetCurrentThreadId());
  }
  Menu_Watch(const Menu_Watch&) = delete;
  Menu_Watch& operator=(const Menu_Watch&) = delete;
  ~Menu_Watch() {
    UnhookWindowsHookEx(hook_);
    chosen_ = nullptr;
  }

 private:
  static LRESULT CALLBACK Take(int code, WPARAM parameter, LPARAM message) {
    if (code == MSGF_MENU) {
      const MSG& given = *reinterpret_cast<const MSG*>(message);
      const bool runs = given.message == WM_LBUTTONUP || given.message == WM_RBUTTONUP ||
                        (given.message == WM_KEYDOWN && given.wParam == VK_RETURN);
      if (runs && chosen_()) {
        EndMenu();
        return 1;
      }
    }
    return CallNextHookEx(nullptr, code, parameter, message);
  }

  // A hook reaches nothing but statics. The mode is on once at a time.
  inline static std::function<bool()> chosen_;
  HHOOK hook_;
};

}  // namespace

// Captures the mouse, so that the frame gets every click, until a menu opens, which captures it for itself.
const Control* Whats_This_Pointer::Choose() {
  if (choosing_) return nullptr;
  choosing_ = true;
  const wxCursor question(wxCURSOR_QUESTION_ARROW);
  const wxBusyCursor pointer(&question);
  wxGUIEventLoop loop;
  const Control* chosen = nullptr;
  int highlighted = wxID_NONE;
  bool pressed = false, left = false;
  const auto leave = [&](const Control* control) {
    if (left) return;
    left = true;
    chosen = control;
    loop.ScheduleExit();
  };
  const auto leave_with_entry = [&](int id) {
    const wxMenuItem* const entry = frame_.GetMenuBar()->FindItem(id);
    if (entry == nullptr || entry->IsSubMenu()) return false;
    leave(finder_.Of_Menu_Entry(entry->GetItemLabelText()));
    return true;
  };
  const auto press = [&](wxMouseEvent& event) {
    const wxPoint place = frame_.ClientToScreen(event.GetPosition());
    if (!Is_On_Menu_Bar(frame_, place)) {
      pressed = true;
      return;
    }
    frame_.ReleaseMouse();
    SendMessageW(frame_.GetHandle(), WM_NCLBUTTONDOWN, HTMENU, MAKELPARAM(place.x, place.y));
  };
  const auto release = [&](wxMouseEvent& event) {
    if (pressed) leave(finder_.At(frame_.ClientToScreen(event.GetPosition())));
  };
  const auto key = [&](wxKeyEvent& event) {
    const int code = event.GetKeyCode();
    if (code == WXK_ESCAPE) return leave(nullptr);
    if (code == WXK_RETURN) return leave(finder_.Of_Widget(wxWindow::FindFocus()));
    // These open menus.
    event.Skip(code == WXK_ALT || code == WXK_F10 || (event.AltDown() && code >= 'A' && code <= 'Z'));
  };
  const auto highlight = [&](wxMenuEvent& event) {
    highlighted = event.GetMenuId();
    event.Skip();
  };
  const auto command = [&](wxCommandEvent& event) { leave_with_entry(event.GetId()); };
  const auto lost = [&](wxMouseCaptureLostEvent&) {
    if (!Menu_Is_Open()) leave(nullptr);
  };
  const auto idle = [&](wxIdleEvent& event) {
    event.Skip();
    if (!left && !frame_.HasCapture() && !Menu_Is_Open()) frame_.CaptureMouse();
  };
  const auto close = [&](wxCloseEvent& event) {
    leave(nullptr);
    event.Skip();
  };
  frame_.Bind(wxEVT_LEFT_DOWN, press);
  frame_.Bind(wxEVT_LEFT_UP, release);
  frame_.Bind(wxEVT_CHAR_HOOK, key);
  frame_.Bind(wxEVT_MENU_HIGHLIGHT, highlight);
  frame_.Bind(wxEVT_MENU, command);
  frame_.Bind(wxEVT_MOUSE_CAPTURE_LOST, lost);
  frame_.Bind(wxEVT_IDLE, idle);
  frame_.Bind(wxEVT_CLOSE_WINDOW, close);
  {
    const Menu_Watch menus([&] { return leave_with_entry(highlighted); });
    frame_.CaptureMouse();
    loop.Run();
  }
  if (frame_.HasCapture()) frame_.ReleaseMouse();
  frame_.Unbind(wxEVT_LEFT_DOWN, press);
  frame_.Unbind(wxEVT_LEFT_UP, release);
  frame_.Unbind(wxEVT_CHAR_HOOK, key);
  frame_.Unbind(wxEVT_MENU_HIGHLIGHT, highlight);
  frame_.Unbind(wxEVT_MENU, command);
  frame_.Unbind(wxEVT_MOUSE_CAPTURE_LOST, lost);
  frame_.Unbind(wxEVT_IDLE, idle);
  frame_.Unbind(wxEVT_CLOSE_WINDOW, close);
  choosing_ = false;
  return chosen;
}

}  // namespace tidyfold
