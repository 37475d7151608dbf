// Flags that mail programs keep in a message's own header.
#pragma once

#include <optional>
#include <string>
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

// The marks that the exporter writes into the name of a message's file, with the letters of Maildirs: "Dinner
// on Friday,FRS.eml" is flagged, answered and read. Nothing for other names.
std::optional<Mail_Flags> Flags_In_File_Name(std::string_view name);
// The end of such a name; without marks ".eml" alone.
std::string Flagged_File_Name_End(const Mail_Flags& flags);

}  // namespace tidyfold
