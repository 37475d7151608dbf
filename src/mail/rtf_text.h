// The visible text of an RTF body.
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// Returns UTF-8, without pictures, styles, field instructions and hidden text.
std::string Rtf_To_Text(std::string_view rtf);

}  // namespace tidyfold
