#include "cli/folder_path.h"

#include <utility>

#include "cli/failure.h"

namespace tidyfold::cli {

std::vector<std::string> Parse_Folder_Path(std::string_view path) {
  std::optional<std::vector<std::string>> names = Split_Folder_Path(path);
  if (!names) {
    throw Failure(Exit_Status::Bad_Input,
                  "The folder path \"" + std::string(path) +
                      "\" has a \"\\\" that stands for nothing. Join folder names by \"/\", and write a "
                      "\"\\\" inside a name as \"\\\\\".");
  }
  return *std::move(names);
}

}  // namespace tidyfold::cli
