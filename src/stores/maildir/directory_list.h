// The files of one directory, by name.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "outlook/mail_store.h"

namespace tidyfold::maildir {

// Asks now and then whether work of many small steps is to go on.
class Patience {
 public:
  explicit Patience(Begin_Wait begin) : begin_(std::move(begin)) {}
  // After each step; false once it is not.
  bool Lasts();

 private:
  Begin_Wait begin_;  // may be empty: it always is
  std::function<bool()> goes_on_;
  std::chrono::steady_clock::time_point asked_ = {};
  std::uint32_t steps_ = 0;
  bool lasts_ = true;
};

class Directory_List {
 public:
  // Reads the names that begin without a dot, of what may be files; 0, or the error number of the system,
  // ECANCELED where the patience has ended.
  int Read(const std::string& path, Patience& patience);
  std::size_t Count() const { return files_.size(); }
  // The same errors.
  int For_Each(Patience& patience,
               const std::function<void(std::string_view name, std::uint64_t inode)>& take) const;

 private:
  // Most names differ in their first characters, which stand here as numbers that compare alike.
  struct File {
    std::uint64_t first = 0, second = 0;
    std::size_t at = 0;  // of the name, in names_
    std::uint64_t inode = 0;
  };
  std::string_view Name(const File& file) const { return names_.c_str() + file.at; }

  std::string names_;  // each with a NUL behind it
  std::vector<File> files_;
};

}  // namespace tidyfold::maildir
