// The contents of a Maildir, and the meaning of its file names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/store_writer.h"

namespace tidyfold {

struct Maildir_Message {
  std::string name;
  bool is_new = false;  // in new/, not yet looked at by any program
  bool seen = false;
  bool answered = false;
  bool flagged = false;
  bool trashed = false;  // marked as deleted, not yet removed
  Date delivered = no_date;

  std::filesystem::path Path(const std::filesystem::path& maildir) const;
};

// A message's file name: what stays when marks change, and the letters of its marks.
struct Maildir_Name {
  std::string_view unique, marks;
};
Maildir_Name Split_Maildir_Name(std::string_view name);

// "Entwürfe" as "Entw&APw-rfe", and back; what is not so written stays as it is.
std::string To_Maildir_Name(const std::string& name);
std::string From_Maildir_Name(const std::string& name);

// Either of cur/ and new/ may have got lost.
bool Is_Maildir(const std::filesystem::path& directory);

// Parses a message's file name: "1029384756.M20046P2137.mailserver:2,FS".
Maildir_Message Read_Maildir_Name(std::string name, bool is_new);

// Gives a message the marks that its name tells, and its delivery as the date if it names none.
void Set_Maildir_Marks(const Maildir_Message& message, New_Item& item);

// The local time of delivery that a unique name begins with; no_date if it does not.
Date Delivery_In(std::string_view name);

// The folder names that ".Parent.Child" stands for, which are in modified UTF-7.
std::vector<std::string> Names_Of_Maildir(std::string_view directory);

}  // namespace tidyfold
