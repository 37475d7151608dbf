// Tells whether two items are the same one, so that what is imported twice is noticed.
#pragma once

#include <cstdint>
#include <string>

#include "outlook/store_writer.h"

namespace tidyfold {

// Goes by what every form of an item tells alike: class, sender, subject, text, names of the attachments, and
// the Message-ID. Line ends, blanks and the ">" that mailbox files put in front of "From" do not count, nor
// do flags, sizes and dates of modification. Other dates count where there is no Message-ID.
Item_Key Key_Of(const New_Item& item);

}  // namespace tidyfold
