// Tells whether an item of a source lies in the store already.
#pragma once

#include <cstdint>

#include "outlook/store_writer.h"

namespace tidyfold {

// A number made of what an item is: class, Message-ID, texts, dates, attachments, and the form of its own of
// what is no message. Read marks, flags and folder are left out, as they change while the item stays the
// same; so is a message's raw form, which mail programs write their marks into. Never 0.
std::int64_t Item_Identity(const New_Item& item);

}  // namespace tidyfold
