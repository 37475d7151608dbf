// The file-system operations that help asks for. Paths are UTF-8.
#pragma once

#include <optional>
#include <string>

namespace tidyfold {

// True for files only; a folder of that name is none.
bool FileExists(const std::string& path);
// The last part of a path, without its extension.
std::string GetBaseName(const std::string& path);
// What follows the last point in the last part of a path; empty where there is none.
std::string GetExtensionName(const std::string& path);
// The path of a name in a folder, with exactly one separator between them.
std::string BuildPath(const std::string& folder, const std::string& name);
// What a file holds; nothing where it cannot be read.
std::optional<std::string> File_Text(const std::string& path);
// The file: address of a path.
std::string File_URL(const std::string& path);

}  // namespace tidyfold
