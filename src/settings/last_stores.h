// What was last open or chosen: stores, the commands for their passwords, and the directory for copies.
#pragma once

#include <string>
#include <vector>

#include "base/store_address.h"
#include "settings/registry.h"

namespace tidyfold {

// Empty where none are kept, or where the registry cannot be read.
std::vector<Store_Address> Last_Stores(Registry& registry);

// Keeps what opens them from anywhere, and puts them in front of the recent stores. False where the registry
// could not be written.
bool Keep_Last_Stores(Registry& registry, const std::vector<Store_Address>& stores);

// Stores that were open before, the last ones first, those that are open now included; each as
// Store_Address::Lasting_Text.
std::vector<std::string> Recent_Stores(Registry& registry);

// The command that writes an account's password; empty where none is kept.
std::string Password_Command(Registry& registry, const Store_Address& account);
bool Keep_Password_Command(Registry& registry, const Store_Address& account, const std::string& command);

// The directory of Keep a Copy First; empty where none is kept.
std::string Last_Copy_Directory(Registry& registry);
bool Keep_Copy_Directory(Registry& registry, const std::string& directory);

}  // namespace tidyfold
