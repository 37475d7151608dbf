#include "outlook/folder_path.h"

namespace tidyfold {

std::string Escape_Folder_Name(std::string_view name) {
  std::string escaped;
  for (const char character : name) {
    if (character == '/' || character == '\\') escaped += '\\';
    escaped += character;
  }
  return escaped;
}

std::optional<std::vector<std::string>> Split_Folder_Path(std::string_view path) {
  if (path == top_folder_path) return std::vector<std::string>{};
  std::vector<std::string> names(1);
  for (std::size_t at = 0; at < path.size(); ++at) {
    if (path[at] == '/') {
      names.emplace_back();
      continue;
    }
    if (path[at] == '\\') {
      ++at;
      if (at == path.size() || (path[at] != '/' && path[at] != '\\')) return std::nullopt;
    }
    names.back() += path[at];
  }
  return names;
}

std::string Path_Of_Folder(MAPIFolder& folder) {
  MAPIFolder_Ptr parent = folder.Parent();
  if (parent == nullptr) return top_folder_path;
  std::string path = Escape_Folder_Name(folder.Name());
  for (MAPIFolder_Ptr above; (above = parent->Parent()) != nullptr; parent = above)
    path.insert(0, Escape_Folder_Name(parent->Name()) + "/");
  return path;
}

}  // namespace tidyfold
