#include "desktop/context_menu.h"

#include <wx/menu.h>

#include "desktop/text_conversion.h"

namespace tidyfold {

void Show_Context_Menu(wxWindow& window, const Context_Menu& entries, const wxPoint& place) {
  wxMenu menu;
  constexpr int first_id = 1;
  for (std::size_t at = 0; at < entries.size(); ++at) {
    if (entries[at] == nullptr) {
      menu.AppendSeparator();
    } else {
      menu.Append(first_id + static_cast<int>(at), To_Wx(entries[at]->Caption()))
          ->Enable(entries[at]->Enabled());
    }
  }
  const int chosen = window.GetPopupMenuSelectionFromUser(menu, place);
  if (chosen < first_id) return;
  // It may have been switched off while the menu was open.
  const MenuItem& entry = *entries[static_cast<std::size_t>(chosen - first_id)];
  if (entry.Enabled()) Raise(entry.Click);
}

bool Asks_For_Context_Menu(const wxKeyEvent& event) {
  return event.GetKeyCode() == WXK_WINDOWS_MENU || event.GetKeyCode() == WXK_MENU ||
         (event.GetKeyCode() == WXK_F10 && event.GetModifiers() == wxMOD_SHIFT);
}

}  // namespace tidyfold
