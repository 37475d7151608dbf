#include "desktop/common/theme.h"

#include <wx/settings.h>

#include <algorithm>
#include <cmath>

namespace tidyfold {

namespace {

// Relative luminance and contrast as the Web Content Accessibility Guidelines define them.
double Luminance(const wxColour& colour) {
  const auto linear = [](unsigned char channel) {
    const double value = channel / 255.0;
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.Red()) + 0.7152 * linear(colour.Green()) + 0.0722 * linear(colour.Blue());
}

double Contrast(const wxColour& one, const wxColour& other) {
  const double a = Luminance(one), b = Luminance(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

wxColour Blend(const wxColour& from, const wxColour& to, double share) {
  const auto mix = [share](unsigned char a, unsigned char b) {
    return static_cast<unsigned char>(std::lround(a + (b - a) * share));
  };
  return {mix(from.Red(), to.Red()), mix(from.Green(), to.Green()), mix(from.Blue(), to.Blue())};
}

constexpr double readable_contrast = 4.5;
constexpr double discernible_contrast = 3;

}  // namespace

wxColour Theme_Background() {
  return wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX);
}

wxColour Theme_Text() {
  return wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT);
}

// Black or white, whichever can be read better.
wxColour Theme_Chosen_Text() {
  const wxColour background = Theme_Chosen_Background();
  return Contrast(background, *wxWHITE) >= readable_contrast ? *wxWHITE : *wxBLACK;
}

wxColour Theme_Chosen_Background() {
  const wxColour background = Theme_Background();
  const wxColour highlight = wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT);
  const auto fits = [&](const wxColour& colour) {
    return Contrast(colour, background) >= discernible_contrast &&
           std::max(Contrast(colour, *wxWHITE), Contrast(colour, *wxBLACK)) >= readable_contrast;
  };
  // White text if a small step towards black allows it.
  for (double share = 0; share < 0.4; share += 0.05) {
    const wxColour darker = Blend(highlight, *wxBLACK, share);
    if (fits(darker) && Contrast(darker, *wxWHITE) >= readable_contrast) return darker;
  }
  const wxColour& away = Luminance(background) > 0.2 ? *wxBLACK : *wxWHITE;
  for (double share = 0; share < 1; share += 0.05) {
    const wxColour moved = Blend(highlight, away, share);
    if (fits(moved)) return moved;
  }
  return away;
}

wxColour Faded(const wxColour& text, const wxColour& background) {
  for (double share = 0.6; share > 0; share -= 0.05) {
    const wxColour faded = Blend(text, background, share);
    if (Contrast(faded, background) >= readable_contrast) return faded;
  }
  return text;
}

wxColour Disabled_Text_Colour(const wxColour& background) {
  return Faded(Theme_Text(), background);
}

wxColour Text_Colour(Colour colour, const wxColour& background) {
  if (colour == 0) return Theme_Text();
  const wxColour wanted(static_cast<unsigned char>(colour & 0xFF),
                        static_cast<unsigned char>(colour >> 8 & 0xFF),
                        static_cast<unsigned char>(colour >> 16 & 0xFF));
  const wxColour& end = Luminance(background) > 0.2 ? *wxBLACK : *wxWHITE;
  for (double share = 0; share < 1; share += 0.05) {
    const wxColour moved = Blend(wanted, end, share);
    if (Contrast(moved, background) >= readable_contrast) return moved;
  }
  return end;
}

}  // namespace tidyfold
