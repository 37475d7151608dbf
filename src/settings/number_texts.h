// Numbers that stand in texts.
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

// The number that the whole text is, in the given format or as "&H1F" or "&O17"; nothing where it is none.
std::optional<double> Numeric_Value(std::string_view text, const Number_Format& format);

// The number that the text starts with, whatever the locale; 0 where it starts with none.
double Leading_Number(std::string_view text);

}  // namespace tidyfold
