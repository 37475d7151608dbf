#include "runs/folder_finder.h"

#include "errors/automation_error.h"
#include "outlook/folder_path.h"
#include "outlook/folder_roles.h"
#include "outlook/folder_tree.h"

namespace tidyfold {

namespace {

// Of several, one that holds the same type of items.
MAPIFolder_Ptr Child_Named(MAPIFolder& parent, const std::string& name, std::int32_t wanted_type) {
  const Folders_Ptr children = parent.Folders();
  const std::int32_t count = children->Count();
  MAPIFolder_Ptr found;
  for (std::int32_t i = 1; i <= count; ++i) {
    MAPIFolder_Ptr child = children->Item(i);
    if (child->Name() != name) continue;
    if (child->DefaultItemType() == wanted_type) return child;
    if (found == nullptr) found = std::move(child);
  }
  return found;
}

}  // namespace

const std::string& Folder_Finder::Deleted_Items_Id() {
  if (!deleted_items_id_.empty()) return deleted_items_id_;
  const MAPIFolder_Ptr folder = Find_Folder_With_Role(name_space_, *top_, default_folder_deleted_items);
  if (folder == nullptr) {
    throw Automation_Error(automation_error::not_found, "The store has no \"Deleted Items\" folder.",
                           application_title);
  }
  deleted_items_id_ = folder->EntryID();
  return deleted_items_id_;
}

// A store may have several texts for one folder.
bool Folder_Finder::Is_Deleted_Items(const std::string& folder_id) {
  const std::string& wastebasket = Deleted_Items_Id();
  return folder_id == wastebasket || name_space_.CompareEntryIDs(folder_id, wastebasket);
}

void Folder_Finder::Look() {
  known_.emplace(top_->EntryID(), Known_Folder{top_, top_folder_path, false});
  Look_Below(top_, "", false);
}

void Folder_Finder::Look_Below(const MAPIFolder_Ptr& folder, const std::string& path, bool thrown_away) {
  const Folders_Ptr children = folder->Folders();
  const std::int32_t count = children->Count();
  for (std::int32_t i = 1; i <= count; ++i) {
    const MAPIFolder_Ptr child = children->Item(i);
    const std::string id = child->EntryID();
    const std::string child_path = path + Escape_Folder_Name(child->Name());
    known_.emplace(id, Known_Folder{child, child_path, thrown_away});
    Look_Below(child, child_path + "/", thrown_away || Is_Deleted_Items(id));
  }
}

MAPIFolder_Ptr Folder_Finder::Find_Or_Make(const Logged_Folder& folder) {
  if (known_.empty()) Look();
  const auto known = known_.find(folder.entry_id);
  // It may always have lain below "Deleted Items".
  if (known != known_.end() && (!known->second.thrown_away || known->second.path == folder.path))
    return known->second.folder;
  MAPIFolder_Ptr found = Walk(folder);
  known_.insert_or_assign(folder.entry_id, Known_Folder{found, folder.path, false});
  return found;
}

MAPIFolder_Ptr Folder_Finder::Walk(const Logged_Folder& folder) {
  const auto names = Split_Folder_Path(folder.path);
  if (!names) {
    throw Automation_Error(automation_error::not_found,
                           "The log does not tell where its folder \"" + folder.path + "\" lay.",
                           application_title);
  }
  MAPIFolder_Ptr at = top_;
  std::string path;
  for (const std::string& name : *names) {
    path += (path.empty() ? "" : "/") + Escape_Folder_Name(name);
    const auto type_known = types_.find(path);
    const bool is_last = path == folder.path;
    const std::int32_t type = is_last                      ? folder.item_type
                              : type_known != types_.end() ? type_known->second
                                                           : at->DefaultItemType();
    MAPIFolder_Ptr below = Child_Named(*at, name, type);
    if (below == nullptr) {
      below = at->Folders()->Add(name, type);
      ++made_;
    }
    at = std::move(below);
  }
  return at;
}

}  // namespace tidyfold
