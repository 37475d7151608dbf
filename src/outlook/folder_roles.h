// What a folder is to its store: its wastebasket, its inbox, the place of what was sent. A role is an
// OlDefaultFolders number and goes by the folder's identity, since names change with the language.
#pragma once

#include <cstdint>
#include <string_view>

#include "outlook/object_model.h"

namespace tidyfold {

// All that are asked for.
inline constexpr std::int32_t folder_roles[] = {default_folder_deleted_items,
                                                default_folder_inbox,
                                                default_folder_outbox,
                                                default_folder_sent,
                                                default_folder_drafts,
                                                default_folder_junk,
                                                9 /* Calendar */,
                                                10 /* Contacts */,
                                                11 /* Journal */,
                                                12 /* Notes */,
                                                13 /* Tasks */};

// The role that a name on a store's top level stands for in one of the languages that Outlook comes in; 0 for
// any other. For stores that do not tell their folders' roles.
std::int32_t Role_Of_Name(std::string_view name);

// The folder that has a role in the store with this top folder: as the store says, as the session says of its
// own store, or else by its name. Empty where there is none. Throws Automation_Error.
MAPIFolder_Ptr Find_Folder_With_Role(NameSpace& name_space, MAPIFolder& top, std::int32_t role);

}  // namespace tidyfold
