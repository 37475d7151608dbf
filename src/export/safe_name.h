// Names that every file system takes.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tidyfold {

// The name without what a file system or shell might refuse or take for something else: separators, control
// characters, blanks and dots at its ends, the names of devices; no longer than `longest` bytes of whole
// characters. Never empty, and never one that means something in a Maildir.
std::string Safe_Name(std::string_view name, std::size_t longest = 120);

// The name itself or, while it is taken, "NAME (2)END" and so on.
std::string Free_Name(const std::string& name, const std::string& end,
                      const std::function<bool(const std::string& name)>& is_taken);

}  // namespace tidyfold
