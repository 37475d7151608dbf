// The addresses in a mail's header.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidyfold {

struct Mail_Address {
  std::string name;     // may be empty
  std::string address;  // empty for a group
};

// In order. A group counts as one entry with a name only. Takes time and room in proportion to the value,
// whatever is nested in it. Raw 8-bit text is read as Header_Text does.
std::vector<Mail_Address> Header_Addresses(std::string_view value, std::string_view raw_charset = {});

}  // namespace tidyfold
