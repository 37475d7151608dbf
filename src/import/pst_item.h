// Converts an item of an Outlook file to an item of a store.
#pragma once

#include <cstdint>
#include <string_view>

#include "import/pst_properties.h"
#include "outlook/store_writer.h"

namespace tidyfold {

// The item class of a message class ("IPM.Note.SMIME"), by its nearest known parent; mail if there is none.
std::int32_t Item_Class_Of(std::string_view message_class);

// The item_type that a folder of this container class ("IPF.Appointment") holds by default.
std::int32_t Item_Type_Of(std::string_view container_class);

// Reads the whole item. Throws Message_Error if the file is damaged.
New_Item Read_Pst_Item(libpff_item_t* message);

}  // namespace tidyfold
