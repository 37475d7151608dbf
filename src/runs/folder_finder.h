// Where the items of a run lay: the folders of one store, found again after the run, and made again where
// they are gone.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>

#include "runs/run_log.h"

namespace tidyfold {

// Throws Automation_Error where the store cannot be read or changed.
class Folder_Finder {
 public:
  // The item type of a folder by its path, as far as the log knows it.
  using Item_Types = std::unordered_map<std::string, std::int32_t>;

  Folder_Finder(NameSpace& name_space, MAPIFolder_Ptr top, const Item_Types& types)
      : name_space_(name_space), top_(std::move(top)), types_(types) {}

  // Whether this is the store's "Deleted Items".
  bool Is_Deleted_Items(const std::string& folder_id);
  // By its identity, wherever it lies now; one that was thrown away itself counts as gone. Otherwise by its
  // path. What is missing on the way is made.
  MAPIFolder_Ptr Find_Or_Make(const Logged_Folder& folder);
  // Looks at everything anew: the store has changed.
  void Forget() { known_.clear(); }
  int Made() const { return made_; }

 private:
  const std::string& Deleted_Items_Id();
  void Look();
  void Look_Below(const MAPIFolder_Ptr& folder, const std::string& path, bool thrown_away);
  MAPIFolder_Ptr Walk(const Logged_Folder& folder);

  struct Known_Folder {
    MAPIFolder_Ptr folder;
    std::string path;
    bool thrown_away;  // lies below "Deleted Items"
  };
  NameSpace& name_space_;
  MAPIFolder_Ptr top_;
  const Item_Types& types_;
  std::string deleted_items_id_;
  std::unordered_map<std::string, Known_Folder> known_;  // by EntryID; empty: not looked at yet
  int made_ = 0;
};

}  // namespace tidyfold
