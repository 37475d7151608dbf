// The program's icon.
#pragma once

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>

namespace tidyfold {

wxIconBundle Application_Icons();
// A large version, to be shown inside a window.
wxBitmapBundle Application_Picture(const wxSize& size);

}  // namespace tidyfold
