// Messages of an Outlook file in the Internet's form.
#pragma once

#include <string>

#include "import/pst_properties.h"

namespace tidyfold {

// The body in the richest form that there is, as it is kept; any of the three may be empty.
struct Pst_Body {
  std::string plain;
  std::string html;
  std::string rtf;
};
Pst_Body Read_Pst_Body(libpff_item_t* message, const Pst_Properties& properties);

// Outlook keeps no message as it came over the wire, only its headers, if it came over the wire at all. So
// the message is built anew: those headers, else ones made of its properties, then its texts and attachments.
// A signature over the original does not hold for it.
std::string Rebuild_Message(libpff_item_t* message, const Pst_Properties& properties, const Pst_Body& body);

}  // namespace tidyfold
