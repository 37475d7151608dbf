// Today's date by the computer's clock.
#pragma once

#include <chrono>
#include <ctime>

#include "base/clock.h"

namespace tidyfold {

class System_Clock : public Clock {
 public:
  Date Today() const override {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    return Date_Of(std::chrono::year{local.tm_year + 1900} / (local.tm_mon + 1) / local.tm_mday);
  }
};

}  // namespace tidyfold
