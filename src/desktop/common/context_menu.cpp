#include "desktop/common/context_menu.h"

#include <wx/menu.h>

namespace tidyfold {

// The entries have the same identifiers as in the menu bar, so that the frame handles them, and shows their
// help, in the same way.
void Show_Context_Menu(wxWindow& window, const Context_Menu& entries, const wxPoint& place) {
  wxMenu menu;
  for (const Menu_Binder* const entry : entries) {
    if (entry == nullptr) {
      menu.AppendSeparator();
    } else {
      entry->Append_To(menu);
    }
  }
  window.PopupMenu(&menu, place);
}

bool Asks_For_Context_Menu(const wxKeyEvent& event) {
  return event.GetKeyCode() == WXK_WINDOWS_MENU || event.GetKeyCode() == WXK_MENU ||
         (event.GetKeyCode() == WXK_F10 && event.GetModifiers() == wxMOD_SHIFT);
}

}  // namespace tidyfold
