#include <wx/icon.h>

#include "desktop/common/application_icon.h"

namespace tidyfold {

namespace {

// The icon resource of the executable.
constexpr const char* resource = "tidyfold";

}  // namespace

wxBitmapBundle Application_Picture(const wxSize& size) {
  return wxBitmapBundle::FromBitmap(wxBitmap(wxIcon(resource, wxBITMAP_TYPE_ICO_RESOURCE, size.x, size.y)));
}

wxIconBundle Application_Icons() {
  return wxIconBundle(resource, nullptr);
}

}  // namespace tidyfold
