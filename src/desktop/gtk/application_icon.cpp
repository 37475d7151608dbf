#include "desktop/common/application_icon.h"

#include <wx/icon.h>

namespace tidyfold {

// packaging/tidyfold.svg, written into a source file by the build.
extern const char* const application_picture;

wxBitmapBundle Application_Picture(const wxSize& size) {
  return wxBitmapBundle::FromSVG(application_picture, size);
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
