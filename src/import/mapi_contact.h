// Builds vCards (RFC 6350) from Outlook's contacts and distribution lists.
#pragma once

#include <string>

#include "import/mapi.h"

namespace tidyfold {

// Both throw Message_Error if the file is damaged. `note` is the item's text.
std::string Build_Contact(const Mapi_Item& item, const std::string& note);
std::string Build_Distribution_List(const Mapi_Item& item, const std::string& note);

}  // namespace tidyfold
