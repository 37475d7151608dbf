// Names of mailboxes on the wire: modified UTF-7 (RFC 3501, section 5.1.3).
#pragma once

#include <string>
#include <string_view>

namespace tidyfold::imap {

// To UTF-8. What is no modified UTF-7 stays as it is, its bytes that are no UTF-8 replaced.
std::string Decode_Mailbox_Name(std::string_view name);
std::string Encode_Mailbox_Name(std::string_view utf8);

}  // namespace tidyfold::imap
