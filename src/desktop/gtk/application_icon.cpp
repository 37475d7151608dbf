#include "desktop/common/application_icon.h"

#include <wx/icon.h>

namespace tidyfold {

namespace {

// A folded letter in a tray, with a tick on it.
constexpr const char* picture =
    R"svg(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64" viewBox="0 0 64 64">
<rect x="4" y="4" width="56" height="56" rx="13" fill="#2f6f9f"/>
<path d="M4 47 L4 17 A13 13 0 0 1 17 4 L47 4 A13 13 0 0 1 60 17 L60 22 Z" fill="#3c83b8"/>
<path d="M14 14 L50 14 L50 30 L14 30 Z" fill="#ffffff"/>
<path d="M14 30 L50 30 L45 41 L19 41 Z" fill="#d5e4ef"/>
<rect x="19" y="19" width="20" height="2.6" fill="#9fbdd3"/>
<rect x="19" y="24" width="14" height="2.6" fill="#9fbdd3"/>
<path d="M11 38 L18 38 L22 44 L42 44 L46 38 L53 38 L53 49 A4 4 0 0 1 49 53 L15 53 A4 4 0 0 1 11 49 Z" fill="#f4b942"/>
<circle cx="46" cy="22" r="11" fill="#2e9e5b"/>
<path d="M40.5 22 L44.5 26 L51.5 18.5" fill="none" stroke="#ffffff" stroke-width="3.2" stroke-linecap="round" stroke-linejoin="round"/>
</svg>)svg";

}  // namespace

wxBitmapBundle Application_Picture(const wxSize& size) {
  return wxBitmapBundle::FromSVG(picture, size);
}

wxIconBundle Application_Icons() {
  wxIconBundle icons;
  for (const int side : {16, 24, 32, 48, 64, 128}) {
    wxIcon icon;
    icon.CopyFromBitmap(Application_Picture(wxSize(side, side)).GetBitmap(wxSize(side, side)));
    icons.AddIcon(icon);
  }
  return icons;
}

}  // namespace tidyfold
