#include "desktop/common/scale.h"

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

#include <cmath>

namespace tidyfold {

namespace {

constexpr double twips_per_inch = 1440;

double Dots_Per_Inch(const wxWindow& window) {
#ifdef __WXGTK__
  // GTK counts in pixels that the screen's scaling leaves alone; what grows is the text, by this.
  (void)window;
  const double resolution = gdk_screen_get_resolution(gdk_screen_get_default());
  return resolution > 0 ? resolution : 96;
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
