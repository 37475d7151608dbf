// Builds Internet messages from Outlook's.
#pragma once

#include <string>

#include "import/mapi.h"

namespace tidyfold {

// The body in each form that the item has; any of the three may be empty. RTF only where there is no other.
struct Mapi_Body {
  std::string plain;
  std::string html;
  std::string rtf;
};
Mapi_Body Read_Mapi_Body(const Mapi_Item& item);

// Outlook does not keep the original message, only its headers, and those only if it was sent by Internet
// mail. So the message is rebuilt: these headers, or else ones made from its properties, then texts and
// attachments. Signatures of the original do not match it.
std::string Rebuild_Message(const Mapi_Item& item, const Mapi_Body& body);

// The identifier of a mailing list from a message's headers (RFC 2919), without angle brackets.
std::string List_Id_Of(std::string_view headers);

}  // namespace tidyfold
