// The folders that every store starts out with: Outlook's numbers (OlDefaultFolders), their names and what
// they hold. A folder is a store's default folder when it lies on the store's top level and has exactly this
// name; of several with the same name it is the one that was there first.
#pragma once

#include <cstdint>
#include <string_view>

#include "outlook/object_model.h"

namespace tidyfold {

inline constexpr const char* deleted_items_name = "Deleted Items";

struct Default_Folder {
  std::int32_t type;
  const char* name;
  std::int32_t item_type;
};

// In the order in which a new store gets them.
inline constexpr Default_Folder default_folders[] = {
    {default_folder_deleted_items, deleted_items_name, item_type::mail},
    {default_folder_inbox, "Inbox", item_type::mail},
    {4, "Outbox", item_type::mail},
    {5, "Sent Items", item_type::mail},
    {9, "Calendar", item_type::appointment},
    {10, "Contacts", item_type::contact},
    {16, "Drafts", item_type::mail},
    {11, "Journal", item_type::journal},
    {12, "Notes", item_type::note},
    {13, "Tasks", item_type::task}};

// nullptr for a number that is not in the table.
constexpr const Default_Folder* Find_Default_Folder(std::int32_t type) {
  for (const Default_Folder& folder : default_folders)
    if (folder.type == type) return &folder;
  return nullptr;
}

constexpr bool Is_Default_Folder_Name(std::string_view name) {
  for (const Default_Folder& folder : default_folders)
    if (folder.name == name) return true;
  return false;
}

// By which default folder Folders.Add of Outlook's own object model names what a new folder is to hold.
constexpr std::int32_t Default_Folder_Holding(std::int32_t item_type) {
  for (const Default_Folder& folder : default_folders)
    if (folder.item_type == item_type && item_type != item_type::mail) return folder.type;
  return default_folder_inbox;
}

}  // namespace tidyfold
