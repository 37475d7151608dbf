// Why a store could not be opened or created.
#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <utility>

namespace tidyfold {

// The text names the store and the remedy.
class Store_Open_Error : public std::exception {
 public:
  enum class Reason {
    Missing,
    Exists,       // a new store would overwrite a file
    Not_A_Store,  // another kind of file, an empty one, another program's database
    Damaged,
    Read_Only,  // cannot be written, but must be
    No_Permission,
    Locked,         // open elsewhere, or a second time here
    Older_Version,  // must be opened for writing once
    Newer_Version,  // written by a later version of the program
    Cannot_Read,    // I/O error, or a share that cannot be reached
    Cannot_Write,   // I/O error while a new store was created
    Disk_Full,
    Cancelled,      // by the person, before it was open
    Not_Reached,    // a server that does not answer, or that is none
    Not_Let_In,     // a server that refuses the user, or the user's password
    Not_Supported,  // a kind of store that does not exist on this system
  };

  // The place is a file or directory, or the address of a mailbox.
  Store_Open_Error(Reason reason, std::filesystem::path place, std::string text, std::string detail = {})
      : reason_(reason), place_(std::move(place)), text_(std::move(text)), detail_(std::move(detail)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  Reason Why() const noexcept { return reason_; }
  const std::filesystem::path& File() const noexcept { return place_; }
  // What the text says in parentheses; may be empty.
  const std::string& Detail() const noexcept { return detail_; }

 private:
  Reason reason_;
  std::filesystem::path place_;
  std::string text_, detail_;
};

}  // namespace tidyfold
