// Sizes as a person reads them.
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

// "12 bytes", "3.4 KB", "1.2 GB": 1024 to the unit, one decimal.
std::string Format_Size(std::int64_t bytes);

}  // namespace tidyfold
