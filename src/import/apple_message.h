// Messages as Apple's mail program keeps them (.emlx): the message's length on a line of its own, the
// message, and a property list with its marks.
#pragma once

#include <filesystem>
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

// Puts parts that lie in files of their own back into the message. Beside FOLDER/Messages/1.partial.emlx, the
// second one is FOLDER/Messages/1.2.emlxpart, still encoded, or the file in FOLDER/Attachments/1/2; a part
// says in X-Apple-Content-Length that it was taken out. Returns how many of these parts lie nowhere, as they
// were not fetched from the server, or cannot be read.
int Put_Parts_Back(const std::filesystem::path& file, std::string& message);

}  // namespace tidyfold
