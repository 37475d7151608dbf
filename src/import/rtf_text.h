// What a reader of an RTF body sees, as plain text.
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// Gives UTF-8. Pictures, styles, fields' instructions and hidden text go.
std::string Rtf_To_Text(std::string_view rtf);

}  // namespace tidyfold
