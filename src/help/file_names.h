// File-system operations for the help. Paths are UTF-8.
#pragma once

#include <optional>
#include <string>

namespace tidyfold {

// True for files only, not for folders.
bool FileExists(const std::string& path);
// The last part of a path, without its extension.
std::string GetBaseName(const std::string& path);
// The text after the last point in the last part of a path; empty if there is none.
std::string GetExtensionName(const std::string& path);
// Joins folder and name with exactly one separator.
std::string BuildPath(const std::string& folder, const std::string& name);
// The content of a file; nothing if it cannot be read.
std::optional<std::string> File_Text(const std::string& path);
// The file: address of a path.
std::string File_URL(const std::string& path);

}  // namespace tidyfold
