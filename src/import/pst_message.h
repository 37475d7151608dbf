// Builds Internet messages from those of an Outlook file.
#pragma once

#include <string>

#include "import/pst_properties.h"

namespace tidyfold {

// The body in each form that the file has; any of the three may be empty.
struct Pst_Body {
  std::string plain;
  std::string html;
  std::string rtf;
};
Pst_Body Read_Pst_Body(libpff_item_t* message, const Pst_Properties& properties);

// Outlook does not keep the original message, only its headers, and those only if it was sent by Internet
// mail. So the message is rebuilt: these headers, or else ones made from its properties, then texts and
// attachments. Signatures of the original do not match it.
std::string Rebuild_Message(libpff_item_t* message, const Pst_Properties& properties, const Pst_Body& body);

}  // namespace tidyfold
