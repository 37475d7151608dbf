#include "desktop/common/lock_picture.h"

#include <wx/image.h>

#include <algorithm>
#include <cmath>

namespace tidyfold {

namespace {

// Whether a point of the unit square is part of a closed padlock: a body with rounded corners and a keyhole
// under a shackle.
bool Is_Lock(double x, double y) {
  constexpr double left = 0.2, right = 0.8, top = 0.46, bottom = 0.9, corner = 0.08;
  if (x > left && x < right && y > top && y < bottom) {
    const double across = std::max({left + corner - x, x - right + corner, 0.0});
    const double down = std::max({top + corner - y, y - bottom + corner, 0.0});
    return std::hypot(across, down) <= corner && std::hypot(x - 0.5, y - 0.67) > 0.07;
  }
  constexpr double centre = 0.34, outer = 0.23, inner = 0.13;
  const double from_middle = y < centre ? std::hypot(x - 0.5, y - centre) : std::fabs(x - 0.5);
  return y <= top && from_middle <= outer && from_middle >= inner;
}

wxBitmap Drawn(const wxColour& colour, int side) {
  constexpr int samples = 4;  // of a pixel, each way
  wxImage image(side, side);
  image.InitAlpha();
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      int inside = 0;
      for (int down = 0; down < samples; ++down)
        for (int across = 0; across < samples; ++across)
          inside += Is_Lock((x + (across + 0.5) / samples) / side, (y + (down + 0.5) / samples) / side);
      image.SetRGB(x, y, colour.Red(), colour.Green(), colour.Blue());
      image.SetAlpha(x, y, static_cast<unsigned char>(255 * inside / (samples * samples)));
    }
  }
  return wxBitmap(image);
}

}  // namespace

wxBitmapBundle Lock_Picture(const wxColour& colour) {
  return wxBitmapBundle::FromBitmaps(Drawn(colour, lock_side), Drawn(colour, 2 * lock_side));
}

}  // namespace tidyfold
