#include "desktop/common/application_icon.h"

#include <wx/icon.h>

namespace tidyfold {

namespace {

// packaging/tidyfold.svg
constexpr const char* picture =
#include "application_picture.inc"
    ;

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
