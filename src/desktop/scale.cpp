#include "desktop/scale.h"

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

#include <cmath>

namespace tidyfold {

namespace {

constexpr double twips_per_inch = 1440;

double Dots_Per_Inch(const wxWindow& window) {
#ifdef __WXGTK__
  // GTK counts in unscaled pixels; what grows is the text, by this setting (1024ths of a dot).
  gint text_dpi = 0;
  g_object_get(gtk_settings_get_default(), "gtk-xft-dpi", &text_dpi, nullptr);
  (void)window;
  return text_dpi > 0 ? text_dpi / 1024.0 : 96.0;
#else
  return window.GetDPI().x;
#endif
}

}  // namespace

Scale::Scale(const wxWindow& window) : pixels_per_twip_(Dots_Per_Inch(window) / twips_per_inch) {}

int Scale::Pixels(Twips twips) const {
  return static_cast<int>(std::lround(static_cast<double>(twips) * pixels_per_twip_));
}

Twips Scale::To_Twips(int pixels) const {
  return static_cast<Twips>(std::lround(pixels / pixels_per_twip_));
}

}  // namespace tidyfold
