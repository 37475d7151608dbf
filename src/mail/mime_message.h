// Internet messages: headers, a blank line, a MIME body.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "outlook/store_writer.h"

namespace tidyfold {

// Larger than any mail server passes on, and small enough for one row of a store.
inline constexpr std::int64_t max_message_size = 512LL * 1024 * 1024;

// Data that cannot be read as a message.
class Message_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The class is mail, report or, with a calendar part, that of a meeting. Unread unless its header says
// otherwise; received is no_date if no header has a date. A byte order mark, empty lines and a "From " line
// may stand before the header. An empty line with no header behind it is an empty header, and all the rest is
// body. Fields that the exporter added are taken out again; with them, it may be a note, a journal entry, a
// post or a task request, which have no raw form. Throws Message_Error for data without header.
New_Item Read_Mime_Message(std::string raw);

// Whether the text ends before the last part of a multipart message does.
bool Lacks_Last_Part(std::string_view text);

// Parses a date in any form found in mail and converts it to local time; no_date if it is none. With
// `as_written` its time zone is ignored.
Date Parse_Mail_Date(std::string_view text, bool as_written = false);

}  // namespace tidyfold
