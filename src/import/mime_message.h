// Messages in the Internet's form: headers, a blank line, a MIME body.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "outlook/store_writer.h"

namespace tidyfold {

// Larger than any mail server passes on; a larger one would not fit into a store's row either.
inline constexpr std::int64_t max_message_size = 512LL * 1024 * 1024;

// What cannot be read as a message.
class Message_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Whether the text begins with a header field ("Name: ...").
bool Begins_With_Header(std::string_view text);

// The class is mail, report, or a meeting's where a calendar part says so. Unread unless its own Status
// header says that it was read; received is no_date where no header tells. Throws Message_Error for what has
// no headers.
New_Item Read_Mime_Message(std::string raw);

// The time that a date in any of the forms found in mail means, in local time; no_date where it is none. With
// `as_written` its own time of day counts, without regard to time zones.
Date Parse_Mail_Date(std::string_view text, bool as_written = false);

}  // namespace tidyfold
