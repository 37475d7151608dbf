// Plain values that controls carry: colours and positions.
#pragma once

#include <cstdint>

namespace tidyfold {

// 0x00BBGGRR, as the platform stores colours.
using Colour = std::uint32_t;

constexpr Colour Rgb(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return red | (green << 8) | (blue << 16);
}

// With the top bit set a colour is an index into the system's palette, not a value.
constexpr Colour system_window_background = 0x80000005;
constexpr Colour system_button_face = 0x8000000F;

// Positions and sizes in models are twips: 1440 to the inch, 15 to a pixel at 96 DPI.
using Twips = float;

}  // namespace tidyfold
