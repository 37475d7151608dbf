#include "cli/store_folders.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "cli/failure.h"
#include "cli/folder_path.h"

namespace tidyfold::cli {

namespace {

class Lister {
 public:
  Lister(std::string store, std::vector<Store_Folder>& list) : store_(std::move(store)), list_(list) {}

  void Add(MAPIFolder_Ptr folder, std::string name, const std::string& path, const std::string& path_below) {
    const Folders_Ptr children = folder->Folders();
    list_.push_back({std::move(folder), store_, path, std::move(name)});
    std::vector<std::pair<std::string, MAPIFolder_Ptr>> sorted;
    const std::int32_t count = children->Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      MAPIFolder_Ptr child = children->Item(i);
      std::string child_name = child->Name();
      sorted.emplace_back(std::move(child_name), std::move(child));
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& left, const auto& right) {
      return Compare_Ignoring_Case(left.first, right.first) < 0;
    });
    for (auto& [child_name, child] : sorted) {
      const std::string child_path = path_below + Escape_Folder_Name(child_name);
      Add(std::move(child), child_name, child_path, child_path + "/");
    }
  }

 private:
  std::string store_;
  std::vector<Store_Folder>& list_;
};

std::string Quoted(const std::string& path) {
  return "The folder path \"" + path + "\"";
}

}  // namespace

std::vector<Store_Folder> List_Folders(NameSpace& name_space, const std::vector<std::string>& stores) {
  std::vector<Store_Folder> list;
  const Folders_Ptr tops = name_space.Folders();
  const std::int32_t count = tops->Count();
  const bool several = count > 1;
  for (std::int32_t i = 1; i <= count; ++i) {
    MAPIFolder_Ptr top = tops->Item(i);
    std::string name = top->Name();
    const std::string path = several ? Escape_Folder_Name(name) : top_folder_path;
    Lister(stores.empty() ? name : stores.at(static_cast<std::size_t>(i - 1)), list)
        .Add(std::move(top), std::move(name), path, several ? path + "/" : "");
  }
  return list;
}

std::vector<Store_Folder> List_Folders(Store_Session& stores) {
  return List_Folders(*stores.GetObject("", "Outlook.Application")->GetNamespace("MAPI"), stores.Names());
}

const Store_Folder& Find_Folder(const std::vector<Store_Folder>& folders, const std::string& path) {
  Parse_Folder_Path(path);
  // Listings show invalid UTF-8 as U+FFFD; such a name can be typed that way.
  const std::string wanted = Valid_Utf8(path);
  const Store_Folder* found = nullptr;
  for (const Store_Folder& folder : folders) {
    if (folder.path != path && Valid_Utf8(folder.path) != wanted) continue;
    if (found != nullptr) {
      throw Failure(Exit_Status::Bad_Input,
                    Quoted(path) +
                        " leads to more than one folder. Mark the right one in the window, or open a single "
                        "store if the two lie in different ones.");
    }
    found = &folder;
  }
  if (found == nullptr) {
    const bool several = !folders.empty() && folders.front().path != top_folder_path;
    const std::string form = several ? "a path begins with the name of its store's top folder, as in \"" +
                                           folders.front().path + "/Inbox\""
                                     : "a path begins below the top folder, as in \"Inbox\"";
    throw Failure(Exit_Status::Bad_Input, Quoted(path) + " names no folder; " + form +
                                              ". \"tidyfold-cli --store ... folders\" lists them.");
  }
  return *found;
}

}  // namespace tidyfold::cli
