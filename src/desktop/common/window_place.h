// Where the main window stood when it was left.
#pragma once

#include <wx/frame.h>

#include "settings/registry.h"

namespace tidyfold {

// False where no place is kept, or where it is on no screen any more. Moves and sizes the window.
bool Restore_Place(wxFrame& frame, Registry& registry);
void Keep_Place(const wxFrame& frame, Registry& registry);

}  // namespace tidyfold
