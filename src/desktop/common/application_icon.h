// The program's own picture.
#pragma once

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>

namespace tidyfold {

wxIconBundle Application_Icons();
// For windows that show it large.
wxBitmapBundle Application_Picture(const wxSize& size);

}  // namespace tidyfold
