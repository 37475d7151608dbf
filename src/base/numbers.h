// Rounding as the platform does it.
#pragma once

#include <cmath>
#include <limits>
#include <stdexcept>

namespace tidyfold {

// The nearest whole number, a half going to the even neighbour. Throws std::overflow_error where it does not
// fit, and for what is no number.
template <class Integer>
Integer Rounded(double number) {
  const double whole = std::nearbyint(number);
  if (!(whole >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        whole <= static_cast<double>(std::numeric_limits<Integer>::max())))
    throw std::overflow_error("Overflow");
  return static_cast<Integer>(whole);
}

}  // namespace tidyfold
