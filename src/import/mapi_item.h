// Converts an item of Outlook's to an item of a store.
#pragma once

#include "import/mapi.h"
#include "outlook/message_class.h"
#include "outlook/store_writer.h"

namespace tidyfold {

// Reads the whole item, and gives it the form of its class that other programs read. Throws Message_Error if
// the file is damaged.
New_Item Read_Mapi_Item(const Mapi_Item& source);

}  // namespace tidyfold
