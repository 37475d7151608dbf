// The menu of a pane, at the pointer or at its current row.
#pragma once

#include <wx/window.h>

#include <vector>

#include "desktop/common/menu_binder.h"

namespace tidyfold {

// Entries of the menu bar in order; null stands for a separator.
using Context_Menu = std::vector<const Menu_Binder*>;

// Shows the menu at a position in the window and runs the chosen entry. Returns when the menu has closed.
void Show_Context_Menu(wxWindow& window, const Context_Menu& entries, const wxPoint& place);

// Whether the key opens the context menu.
bool Asks_For_Context_Menu(const wxKeyEvent& event);

}  // namespace tidyfold
