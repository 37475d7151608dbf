#include "settings/number_texts.h"

#include <charconv>
#include <clocale>
#include <cstdint>

namespace tidyfold {

namespace {

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view Without_White_Space(std::string_view text) {
  constexpr const char* white_space = " \t\r\n";
  const auto first = text.find_first_not_of(white_space);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white_space) + 1 - first);
}

bool Take(std::string_view& text, std::string_view part) {
  if (part.empty() || !text.starts_with(part)) return false;
  text.remove_prefix(part.size());
  return true;
}

std::size_t Take_Digits(std::string_view& text, std::string& number) {
  std::size_t count = 0;
  while (count < text.size() && Is_Digit(text[count])) ++count;
  number.append(text.substr(0, count));
  text.remove_prefix(count);
  return count;
}

// "&H" and "&O" numbers are 32-bit patterns: &HFFFFFFFF is -1.
std::optional<double> Based_Number(std::string_view digits, int base) {
  std::uint32_t bits = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, bits, base);
  if (digits.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return static_cast<std::int32_t>(bits);
}

// Removes a number from the beginning of the text and rewrites it for from_chars; false if there is none.
bool Take_Number(std::string_view& text, const Number_Format& format, std::string& number) {
  if (Take(text, "-")) {
    number += '-';
  } else {
    Take(text, "+");
  }
  std::size_t digits = Take_Digits(text, number);
  while (digits > 0) {
    std::string_view rest = text;
    if (!Take(rest, format.thousands_separator) || rest.empty() || !Is_Digit(rest.front())) break;
    text = rest;
    digits += Take_Digits(text, number);
  }
  std::string_view rest = text;
  if (Take(rest, format.decimal_point) && (digits > 0 || (!rest.empty() && Is_Digit(rest.front())))) {
    text = rest;
    number += '.';
    digits += Take_Digits(text, number);
  }
  if (digits == 0) return false;
  if (rest = text; !rest.empty() && std::string_view("eEdD").find(rest.front()) != std::string_view::npos) {
    rest.remove_prefix(1);
    std::string exponent(1, 'e');
    if (Take(rest, "-")) {
      exponent += '-';
    } else {
      Take(rest, "+");
    }
    if (Take_Digits(rest, exponent) > 0) {
      text = rest;
      number += exponent;
    }
  }
  return true;
}

std::optional<double> Value(const std::string& number) {
  double value = 0;
  const auto [stop, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc{}) return std::nullopt;
  return value;
}

}  // namespace

Number_Format User_Number_Format() {
  const std::lconv& conventions = *std::localeconv();
  return {conventions.decimal_point, conventions.thousands_sep};
}

std::optional<double> Numeric_Value(std::string_view text, const Number_Format& format) {
  text = Without_White_Space(text);
  if (Take(text, "&H") || Take(text, "&h")) return Based_Number(text, 16);
  if (Take(text, "&O") || Take(text, "&o")) return Based_Number(text, 8);
  std::string number;
  if (!Take_Number(text, format, number) || !text.empty()) return std::nullopt;
  return Value(number);
}

double Leading_Number(std::string_view text) {
  text = Without_White_Space(text);
  std::string number;
  if (!Take_Number(text, {}, number)) return 0;
  return Value(number).value_or(0);
}

}  // namespace tidyfold
