// The folders of the open stores under their paths.
#pragma once

#include <string>
#include <vector>

#include "outlook/object_model.h"
#include "stores/sqlite/embedded_outlook.h"

namespace tidyfold::cli {

struct Store_Folder {
  MAPIFolder_Ptr folder;
  std::string store;  // the file's name as it was given
  std::string path;   // as the command line takes it
  std::string name;
};

// Parents before children, siblings by name. With several stores a path begins with the name of the store's
// top folder. Throws Automation_Error where a store cannot be read.
std::vector<Store_Folder> List_Folders(const Embedded_Outlook& outlook);

// The one folder of that path. Throws Failure where there is none, or more than one: no path may ever mean
// another folder than the person had in mind.
const Store_Folder& Find_Folder(const std::vector<Store_Folder>& folders, const std::string& path);

}  // namespace tidyfold::cli
