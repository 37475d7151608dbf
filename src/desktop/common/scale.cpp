#include "desktop/common/scale.h"

#include <cmath>

#include "desktop/common/system_look.h"

namespace tidyfold {

namespace {

constexpr double twips_per_inch = 1440;

}  // namespace

Scale::Scale(const wxWindow& window) : pixels_per_twip_(Dots_Per_Inch(window) / twips_per_inch) {}

void Scale::Follow_Density(int dots_per_inch) {
  pixels_per_twip_ = dots_per_inch / twips_per_inch;
}

int Scale::Pixels(Twips twips) const {
  return static_cast<int>(std::lround(static_cast<double>(twips) * pixels_per_twip_));
}

Twips Scale::To_Twips(int pixels) const {
  return static_cast<Twips>(std::lround(pixels / pixels_per_twip_));
}

}  // namespace tidyfold
