// Flags that mail programs keep in a message's own header.
#pragma once

#include <string_view>

namespace tidyfold {

struct Mail_Flags {
  bool read = false;
  bool answered = false;
  bool flagged = false;
  bool deleted = false;  // and still in the file, until that is compacted
};

class Mail_Headers;

// From X-Mozilla-Status, Status, X-Status and X-Gmail-Labels.
Mail_Flags Flags_In(const Mail_Headers& headers);

// The same of a whole message.
Mail_Flags Flags_In(std::string_view message);

}  // namespace tidyfold
