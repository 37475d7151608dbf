// What a test needs from outside the project: data that other programs wrote, or another program.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

namespace tidyfold {

// CI=true promises that nothing is missing.
inline bool Must_Run_Every_Test() {
  const char* const ci = std::getenv("CI");
  return ci != nullptr && std::string_view(ci) == "true";
}

}  // namespace tidyfold

// Skips the test, or fails it under CI=true, unless `condition` holds.
#define REQUIRE_OR_SKIP(condition, why)         \
  if (condition) {                              \
  } else if (tidyfold::Must_Run_Every_Test()) { \
    FAIL() << why;                              \
  } else                                        \
    GTEST_SKIP() << why
