#include "desktop/common/system_look.h"

#include <wx/msw/wrapwin.h>
#include <wx/toolbar.h>

namespace tidyfold {

double Dots_Per_Inch(const wxWindow& window) {
  return window.GetDPI().x;
}

// Check boxes are only as high as their text.
int Check_Box_Gap() {
  return 4;
}

// The system draws its buttons grey; one with a colour of its own is drawn by the toolkit.
void Look_Dangerous(wxButton& button, bool dangerous) {
  button.SetBackgroundColour(dangerous ? wxColour(0xB3, 0x1B, 0x1B) : wxColour());
  button.SetForegroundColour(dangerous ? *wxWHITE : wxColour());
}

// The system's tooltips keep clear of the pointer.
void Show_Tip_Beside(wxWindow& window, const wxRect&, const wxString& text) {
  if (text != window.GetToolTipText()) window.SetToolTip(text);
}

// wxArtProvider lacks some of the pictures.
long Tool_Bar_Style() {
  return wxTB_TEXT | wxTB_NOICONS;
}

bool Is_On_Screen(const wxWindow& window) {
  return window.IsShown();
}

bool Is_In_Front(wxFrame& frame) {
  return frame.IsActive();
}

bool Is_Program_In_Front() {
  DWORD process = 0;
  ::GetWindowThreadProcessId(::GetForegroundWindow(), &process);
  return process == ::GetCurrentProcessId();
}

}  // namespace tidyfold
