// The menu of a pane, at the pointer or at its current row.
#pragma once

#include <wx/window.h>

#include <vector>

#include "desktop/common/menu_binder.h"

namespace tidyfold {

// Entries of the menu bar in order; a null one separates.
using Context_Menu = std::vector<const Menu_Binder*>;

// Shows the menu at a place of the window and runs what is chosen. Returns when it has been closed.
void Show_Context_Menu(wxWindow& window, const Context_Menu& entries, const wxPoint& place);

// Whether a key asks for the menu.
bool Asks_For_Context_Menu(const wxKeyEvent& event);

}  // namespace tidyfold
