#include "desktop/common/system_look.h"

#include <gtk/gtk.h>

namespace tidyfold {

// GTK leaves the screen's scale factor out of its pixels; only the text grows, by the resolution.
double Dots_Per_Inch(const wxWindow&) {
  const double resolution = gdk_screen_get_resolution(gdk_screen_get_default());
  return resolution > 0 ? resolution : 96;
}

int Check_Box_Gap() {
  return 0;
}

long Tool_Bar_Style() {
  return 0;
}

// wxTopLevelWindow::IsActive is true some time before the window manager agrees.
bool Is_In_Front(wxFrame& frame) {
  return gtk_window_is_active(GTK_WINDOW(frame.GetHandle())) != FALSE;
}

}  // namespace tidyfold
