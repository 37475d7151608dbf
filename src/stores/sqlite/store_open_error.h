// Why a store file could not be opened or created.
#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <utility>

namespace tidyfold {

// The text names the file and the remedy.
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
    Cancelled,  // while it was brought up to date
  };

  Store_Open_Error(Reason reason, std::filesystem::path file, std::string text, std::string detail = {})
      : reason_(reason), file_(std::move(file)), text_(std::move(text)), detail_(std::move(detail)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  Reason Why() const noexcept { return reason_; }
  const std::filesystem::path& File() const noexcept { return file_; }
  // What the text says in parentheses; may be empty.
  const std::string& Detail() const noexcept { return detail_; }

 private:
  Reason reason_;
  std::filesystem::path file_;
  std::string text_, detail_;
};

}  // namespace tidyfold
