// Converts an item of Outlook's to an item of a store.
#pragma once

#include <cstdint>
#include <string_view>

#include "import/mapi.h"
#include "outlook/store_writer.h"

namespace tidyfold {

// The item class of a message class ("IPM.Note.SMIME"), by its nearest known parent; mail if there is none.
std::int32_t Item_Class_Of(std::string_view message_class);

// The item_type that a folder of this container class ("IPF.Appointment") holds by default.
std::int32_t Item_Type_Of(std::string_view container_class);

// Reads the whole item, and gives it the form of its class that other programs read. Throws Message_Error if
// the file is damaged.
New_Item Read_Mapi_Item(const Mapi_Item& source);

}  // namespace tidyfold
