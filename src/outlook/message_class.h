// What Outlook's names for kinds of items and folders stand for
// (https://learn.microsoft.com/office/vba/outlook/concepts/forms/item-types-and-message-classes).
#pragma once

#include <cstdint>
#include <string_view>

#include "outlook/object_model.h"

namespace tidyfold {

// The item class of a message class ("IPM.Note.SMIME"), by its nearest known parent.
std::int32_t Item_Class_Of(std::string_view message_class, std::int32_t otherwise = item_class::mail);

// The item_type that a folder of this container class ("IPF.Appointment") holds by default.
std::int32_t Item_Type_Of(std::string_view container_class);

}  // namespace tidyfold
