// Messages as Apple's mail program keeps them (.emlx): the message's length on a line of its own, the
// message, and a property list with its marks.
#pragma once

#include <string>

namespace tidyfold {

struct Apple_Message {
  std::string message;
  bool read = false;
  bool deleted = false;
  bool answered = false;
  bool flagged = false;
};

// Where the length or the property list is damaged, the message is all that lies between them. A text without
// the frame comes back as it is.
Apple_Message Split_Apple_Frame(std::string text);

}  // namespace tidyfold
