// The folders of the open stores, by path.
#pragma once

#include <string>
#include <vector>

#include "outlook/object_model.h"
#include "outlook/store_session.h"

namespace tidyfold::cli {

struct Store_Folder {
  MAPIFolder_Ptr folder;
  std::string store;  // as it was named; in Outlook the store's name
  std::string path;   // in the form of the command line
  std::string name;
};

// Parents before children, siblings by name. With several stores a path begins with the name of the store's
// top folder. `stores` are what was named, in the same order; empty in Outlook. Throws Automation_Error if a
// store cannot be read.
std::vector<Store_Folder> List_Folders(NameSpace& name_space, const std::vector<std::string>& stores);
std::vector<Store_Folder> List_Folders(Store_Session& stores);

// The folder with this path. Throws Failure if there is none or more than one, so that a path never stands
// for another folder than the one meant.
const Store_Folder& Find_Folder(const std::vector<Store_Folder>& folders, const std::string& path);

}  // namespace tidyfold::cli
