// The contents of a Maildir, and the meaning of its file names.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

struct Maildir_Folder;

struct Maildir_Message {
  std::string name;
  bool is_new = false;  // in new/, not yet looked at by any program
  bool seen = false;
  bool trashed = false;  // moved to the trash, not yet removed
  Date delivered = no_date;

  std::filesystem::path Path(const Maildir_Folder& folder) const;
};

struct Maildir_Folder {
  std::filesystem::path directory;
  std::vector<std::string> names;         // from the Maildir's own folder down; empty for that one
  std::vector<Maildir_Message> messages;  // in order of delivery
};

bool Is_Maildir(const std::filesystem::path& directory);

// Parses a message's file name: "1029384756.M20046P2137.mailserver:2,FS".
Maildir_Message Read_Maildir_Name(std::string name, bool is_new);

// Parents before children. Sub-folders are ".Parent.Child" beside cur/ and new/, with names in modified
// UTF-7, or plain directories. `tick` is called for each file. Throws Import_Error if a directory cannot be
// listed.
std::vector<Maildir_Folder> List_Maildir(const std::filesystem::path& directory,
                                         const std::function<void()>& tick);

}  // namespace tidyfold
