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

// Without angle brackets.
std::string Message_Id_Of(const Mapi_Properties& properties);

// What only the headers of the original tell.
struct Kept_Identities {
  std::string sender_address;
  std::string list_id;
};
Kept_Identities Identities_In(const std::string& headers);

}  // namespace tidyfold
