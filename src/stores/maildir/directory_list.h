// The files of one directory, by name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold::maildir {

class Directory_List {
 public:
  // Reads the names that begin without a dot, of what may be files; 0, or the error number of the system.
  int Read(const std::string& path);
  std::size_t Count() const { return files_.size(); }
  void For_Each(const std::function<void(std::string_view name, std::uint64_t inode)>& take) const;

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
