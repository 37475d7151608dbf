#include "desktop/common/window_place.h"

#include <wx/display.h>

#include <algorithm>

#include "settings/user_values.h"

namespace tidyfold {

namespace {

constexpr const char* key = "Software\\Tidyfold\\Window";
constexpr const char* place = "Place";

}  // namespace

bool Restore_Place(wxFrame& frame, Registry& registry) {
  const Kept_Numbers kept(User_Values(registry, key).Text(place));
  const auto left = kept.Get("Left"), top = kept.Get("Top"), width = kept.Get("Width"),
             height = kept.Get("Height");
  if (!left || !top || !width || !height) return false;
  wxRect rectangle(*left, *top, *width, *height);
  // A person must be able to reach the title.
  const int screen = wxDisplay::GetFromPoint(rectangle.GetTopLeft() + wxPoint(rectangle.width / 2, 10));
  if (screen == wxNOT_FOUND || rectangle.IsEmpty()) return false;
  const wxSize most = wxDisplay(static_cast<unsigned>(screen)).GetClientArea().GetSize() -
                      (frame.GetSize() - frame.GetClientSize());
  // Of the client area, as it was kept: with a size for the whole window, wxGTK waits with showing it for the
  // window manager's frame, and shows it two pixels wide first (3.2.2).
  frame.Move(rectangle.GetTopLeft());
  frame.SetClientSize(std::min(rectangle.width, most.x), std::min(rectangle.height, most.y));
  if (kept.Get("Maximized").value_or(0) != 0) frame.Maximize();
  return true;
}

void Keep_Place(const wxFrame& frame, Registry& registry) {
  User_Values values(registry, key);
  // The size that a maximised or hidden window goes back to is not told.
  Kept_Numbers kept;
  const Kept_Numbers before(values.Text(place));
  const bool maximized = frame.IsMaximized();
  const wxRect now(frame.GetPosition(), frame.GetClientSize());
  const auto set = [&](const char* name, int value) {
    kept.Set(name, maximized || frame.IsIconized() ? before.Get(name).value_or(value) : value);
  };
  set("Left", now.x);
  set("Top", now.y);
  set("Width", now.width);
  set("Height", now.height);
  kept.Set("Maximized", maximized ? 1 : 0);
  values.Set_Text(place, kept.Text());
}

}  // namespace tidyfold
