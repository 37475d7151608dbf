// Tells whether an item of a source lies in the store already.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "outlook/store_writer.h"

namespace tidyfold {

// A number made of what an item is: class, Message-ID, texts, dates, attachments, and the form of its own of
// what is no message. Read marks, flags and folder are left out, as they change while the item stays the
// same; so is a message's raw form, which mail programs write their marks into. Never 0.
std::int64_t Item_Identity(const New_Item& item);

// The same of all that an item holds but its size: marks, every date to the second, contents of attachments,
// and its own form byte by byte.
std::int64_t Item_Fingerprint(const New_Item& item);

// Whether items of this class are messages in their own form.
bool Is_Message_Class(std::int32_t item_class);

// Without what differs between programs that keep the same text: the ends of lines, and blanks at its end.
std::string Plain_Text(std::string_view text);

}  // namespace tidyfold
