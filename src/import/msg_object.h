// Reads the item of an MSG file: a compound file with a stream for each property
// (https://learn.microsoft.com/openspecs/exchange_server_protocols/ms-oxmsg).
#pragma once

#include <memory>
#include <string>

#include "import/mapi.h"

namespace tidyfold {

// `bytes` must outlive the item. Throws Message_Error if they are no MSG file.
std::unique_ptr<Mapi_Item> Open_Msg(const std::string& bytes);

}  // namespace tidyfold
