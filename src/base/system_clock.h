// Day and time by the computer's clock.
#pragma once

#include <chrono>
#include <cmath>
#include <ctime>

#include "base/clock.h"

namespace tidyfold {

class System_Clock : public Clock {
 public:
  Date Today() const override { return std::floor(Now()); }
  Date Now() const override {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    const Date day = Date_Of(std::chrono::year{local.tm_year + 1900} / (local.tm_mon + 1) / local.tm_mday);
    return day + (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / 86400.0;
  }
};

}  // namespace tidyfold
