// Numbers in texts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tidyfold {

struct Number_Format {
  std::string decimal_point = ".";
  std::string thousands_separator;  // empty: none
};

// The format of the locale that the program runs in.
Number_Format User_Number_Format();

// The whole text as a number, in the given format or as "&H1F" or "&O17"; nothing if it is not one.
std::optional<double> Numeric_Value(std::string_view text, const Number_Format& format);

// The number at the beginning of the text, independent of the locale; 0 if there is none.
double Leading_Number(std::string_view text);

}  // namespace tidyfold
