// Files that are replaced as a whole.
#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace tidyfold {

// The file that a path leads to through symbolic links, whether or not it exists.
std::filesystem::path Behind_Links(std::filesystem::path file);

// Gives the file a new content at once: a reader, and a machine that loses its power, sees the old content or
// the new one. Makes missing folders. A link stays a link, and a file keeps its permissions; a new one can be
// read by its owner alone.
std::error_code Replace_File(const std::filesystem::path& file, std::string_view content);

}  // namespace tidyfold
