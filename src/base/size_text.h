// Sizes and numbers as a person reads them.
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

// "12 bytes", "3.4 KB", "1.2 GB": 1024 to the unit, one decimal; the locale's separators.
std::string Format_Size(std::int64_t bytes);

// "1,234,567": a whole number with the locale's separators, none where the locale has none.
std::string Format_Count(std::int64_t number);

}  // namespace tidyfold
