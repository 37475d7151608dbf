#include "base/written_date.h"

#include <array>
#include <charconv>
#include <string>

#include "base/text.h"

namespace tidyfold {

namespace {

struct Form {
  std::string order;  // of 'y', 'm', 'd'
  std::string separators = " /.-,";
};

Form Read_Form(std::string_view form) {
  Form read;
  for (std::size_t at = 0; at < form.size(); ++at) {
    if (form[at] != '%') {
      read.separators += form[at];
      continue;
    }
    at = form.find_first_not_of("-_0^#EO", at + 1);
    if (at == std::string_view::npos) break;
    switch (form[at]) {
      case 'y':
      case 'Y':
        read.order += 'y';
        break;
      case 'm':
        read.order += 'm';
        break;
      case 'd':
      case 'e':
        read.order += 'd';
        break;
      case 'D':
        read.order += "mdy";
        break;
      case 'F':
        read.order += "ymd";
        break;
      default:
        read.order += '?';
    }
  }
  return read;
}

}  // namespace

std::optional<Date> Read_Date(std::string_view text, std::string_view form) {
  const Form expected = Read_Form(form);
  std::array<std::string_view, 3> parts;
  text = Trim(text);
  for (std::string_view& part : parts) {
    part = text.substr(0, text.find_first_not_of("0123456789"));
    if (part.empty() || part.size() > 4) return std::nullopt;
    text.remove_prefix(part.size());
    const std::size_t next = text.find_first_not_of(expected.separators);
    if (next == 0 && &part != &parts.back()) return std::nullopt;
    text.remove_prefix(next == std::string_view::npos ? text.size() : next);
  }
  if (!text.empty()) return std::nullopt;

  const std::string order = parts[0].size() == 4 ? "ymd" : expected.order;
  const auto part = [&](char field) -> std::string_view {
    const std::size_t at = order.find(field);
    return at < parts.size() ? parts[at] : std::string_view{};
  };
  const auto number = [](std::string_view digits) {
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
  };
  const std::string_view year = part('y'), month = part('m'), day = part('d');
  if ((year.size() != 2 && year.size() != 4) || month.empty() || month.size() > 2 || day.empty() ||
      day.size() > 2)
    return std::nullopt;
  const int of_century = number(year) < 69 ? 2000 : 1900;
  const std::chrono::year_month_day date{
      std::chrono::year(number(year) + (year.size() == 2 ? of_century : 0)),
      std::chrono::month(static_cast<unsigned>(number(month))),
      std::chrono::day(static_cast<unsigned>(number(day)))};
  if (!date.ok()) return std::nullopt;
  return Date_Of(date);
}

}  // namespace tidyfold
