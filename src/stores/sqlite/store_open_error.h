// Why a store file could not be opened or made.
#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <utility>

namespace tidyfold {

// The text names the file and says what to do about it.
class Store_Open_Error : public std::exception {
 public:
  enum class Reason {
    Missing,
    Exists,       // a new store was to be made where something lies already
    Not_A_Store,  // some other file, an empty one, another program's database
    Damaged,
    Read_Only,  // could be read, but writing is needed
    No_Permission,
    Locked,         // open elsewhere, or twice here
    Newer_Version,  // written by a later version of the program
    Cannot_Read,    // disk or share failing
    Cannot_Write,   // disk full or failing while a new store was made
  };

  Store_Open_Error(Reason reason, std::filesystem::path file, std::string text)
      : reason_(reason), file_(std::move(file)), text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  Reason Why() const noexcept { return reason_; }
  const std::filesystem::path& File() const noexcept { return file_; }

 private:
  Reason reason_;
  std::filesystem::path file_;
  std::string text_;
};

}  // namespace tidyfold
