// The frame of MSG files and of other programs' documents
// (https://learn.microsoft.com/openspecs/windows_protocols/ms-cfb).
#pragma once

#include <cstddef>
#include <string_view>

namespace tidyfold {

// libgsf takes a level of the stack for each entry of a directory that is laid out like a list, and time by
// the square of their number. This many are still harmless; an item of 1,000 recipients has fewer.
inline constexpr std::size_t most_compound_entries = 20'000;

// How many entries the file's directory has room for; counts no further than one more than the limit.
std::size_t Compound_File_Entries(std::string_view bytes);

}  // namespace tidyfold
