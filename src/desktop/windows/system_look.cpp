#include "desktop/common/system_look.h"

#include <wx/toolbar.h>

namespace tidyfold {

double Dots_Per_Inch(const wxWindow& window) {
  return window.GetDPI().x;
}

// Check boxes are only as high as their text.
int Check_Box_Gap() {
  return 4;
}

// wxArtProvider lacks some of the pictures.
long Tool_Bar_Style() {
  return wxTB_TEXT | wxTB_NOICONS;
}

bool Is_In_Front(wxFrame& frame) {
  return frame.IsActive();
}

}  // namespace tidyfold
