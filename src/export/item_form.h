// An item in the form in which it goes out. Each form is read back, as an importer reads it, before it is
// written: what would not come in again as it is gets a line that says so (import/kept_fields.h).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "outlook/store_writer.h"

namespace tidyfold {

enum class Item_Kind { Message, Text, Calendar, Card };

// Posts and task requests are messages; notes and journal entries are text.
Item_Kind Kind_Of_Item(const New_Item& item);

struct Item_Form {
  std::string bytes;
  std::int64_t fingerprint = 0;     // of what an importer reads
  std::vector<std::string> losses;  // names of fields that do not come in again as they are
};

// How the place that a message is written to tells its marks: changes what was read from its bytes.
using Set_Marks = std::function<void(New_Item& read)>;

// The raw message byte for byte, or one that is built, and fields in front of it only where they are needed:
// to tell what it does not, or that it is a message where nothing but its content can tell.
Item_Form Message_Form(const New_Item& item, const Set_Marks& set_marks, bool is_known_by_content);
// A note or journal entry: a message with a short header whose text anybody can read.
Item_Form Text_Form(const New_Item& item);
// One VCALENDAR.
Item_Form Calendar_Form(const New_Item& item);
// One VCARD.
Item_Form Card_Form(const New_Item& item);

// An entry of an mbox with its separator and the blank line behind it. Throws Message_Error where the
// message's header holds a line that an mbox would take for the beginning of another message.
Item_Form Mbox_Form(const New_Item& item);

// "2014-03-05T09:30:00" in local time as seconds since 1970 in UTC; 0 where there is no date.
std::int64_t Unix_Seconds(Date local);

// When the item arrived or was last changed, for the date of its file.
Date Date_Of_File(const New_Item& item);

}  // namespace tidyfold
