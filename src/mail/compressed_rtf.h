// RTF as MAPI keeps it: compressed, or only wrapped.
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// As much as can be read of damaged data; empty if it is neither form.
std::string Decompress_Rtf(std::string_view bytes);

}  // namespace tidyfold
