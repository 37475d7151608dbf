// Tells what a file is by what is in it.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "import/import.h"

namespace tidyfold {

// How much of a file the kinds need to see.
inline constexpr std::int64_t longest_look = std::int64_t{64} * 1024;

// Never Tree; nothing if it is none of the kinds. `begin` is the file's first part.
std::optional<Source_Kind> Kind_Of_Content(std::string_view begin);

// The same of a file. Throws Import_Error if it cannot be read.
std::optional<Source_Kind> Kind_Of_File(const std::filesystem::path& file);

// Whether a message is in the frame that Apple's mail program keeps it in: its length on a line before it, a
// property list behind it.
bool Has_Apple_Frame(std::string_view begin);

}  // namespace tidyfold
