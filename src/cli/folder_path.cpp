#include "cli/folder_path.h"

#include "cli/failure.h"

namespace tidyfold::cli {

std::vector<std::string> Parse_Folder_Path(std::string_view path) {
  if (path == top_folder_path) return {};
  std::vector<std::string> names(1);
  for (std::size_t at = 0; at < path.size(); ++at) {
    if (path[at] == '/') {
      names.emplace_back();
      continue;
    }
    if (path[at] == '\\') {
      ++at;
      if (at == path.size() || (path[at] != '/' && path[at] != '\\')) {
        throw Failure(Exit_Status::Bad_Input,
                      "The folder path \"" + std::string(path) +
                          "\" has a \"\\\" that stands for nothing. Join folder names by \"/\", and write a "
                          "\"\\\" inside a name as \"\\\\\".");
      }
    }
    names.back() += path[at];
  }
  return names;
}

std::string Escape_Folder_Name(std::string_view name) {
  std::string escaped;
  for (const char character : name) {
    if (character == '/' || character == '\\') escaped += '\\';
    escaped += character;
  }
  return escaped;
}

}  // namespace tidyfold::cli
