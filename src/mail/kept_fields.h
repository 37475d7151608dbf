// What an item's own form does not tell, kept in a few lines of that form. The exporter writes them only
// where they are needed, and the importers take them out again, so that the form is what it was before:
//
//   X-Tidyfold-Export:2          how many lines follow, those folded counted once
//   X-Tidyfold-Class:post
//   X-Tidyfold-Received:2014-03-05T09:30:00
//
// They stand at the top of a message (RFC 5322), and behind the line that begins the item in iCalendar
// (RFC 5545) and vCard (RFC 6350). All three fold long lines alike.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/store_writer.h"

namespace tidyfold {

struct Kept_Field {
  std::string name;   // "Class"; or of mail programs, whole: "Status: "
  std::string value;  // as written
};

// The fields in which an item that was read differs from the one it was made from. Marks are told too, where
// the file's name or its mail program's fields do not.
std::vector<Kept_Field> Kept_Fields_Of(const New_Item& item, const New_Item& read);

// The contents of attachments, which calendars and cards carry as lines. `attachments` without content are
// left out.
std::vector<Kept_Field> Kept_Files(const std::vector<New_Attachment>& attachments);

// The marks and the length of the body that mail programs write into an mbox; `size` is that of the message
// without these lines, in bytes.
std::vector<Kept_Field> Mbox_Fields(const New_Item& item, std::size_t size, std::size_t body_size);
// What stands in front of a message's first field, as an mbox has no place for it.
Kept_Field Kept_Lead_In(std::string_view text);

// The block of lines; each ends in `line_end`.
std::string Kept_Block(const std::vector<Kept_Field>& fields, std::string_view line_end);

// Whether text begins with such a block.
bool Begins_With_Kept_Block(std::string_view text);

// Takes the block out of the text: at its top, or wherever one stands. Of several the first one counts, and
// all go. Empty where there is none.
std::vector<Kept_Field> Take_Kept_Fields_At_Top(std::string& message);
std::vector<Kept_Field> Take_Kept_Fields(std::string& text);

// Says that the exporter built the form, as the item came without one.
Kept_Field Built_Form();

// Whether the item has no form of its own: it was built, or its class has none (notes, journal entries,
// posts).
bool Has_No_Own_Form(const std::vector<Kept_Field>& fields);

// Sets the item's members. What the fields cannot rightly say stays as it is.
void Set_Kept_Fields(const std::vector<Kept_Field>& fields, New_Item& item);

}  // namespace tidyfold
