// Exit statuses, and the failure of a command.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace tidyfold::cli {

// Exit statuses. Scripts depend on the numbers.
enum class Exit_Status {
  Done = 0,
  Not_All_Done = 1,  // something could not be processed
  Bad_Input = 2,     // nothing was changed
  Refused = 3,       // by a check or by the person; nothing was changed
  Cancelled = 4,     // on the way
};

// The text names the file, folder or option and suggests what to do.
class Failure : public std::exception {
 public:
  Failure(Exit_Status status, std::string text) : status_(status), text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  Exit_Status Status() const noexcept { return status_; }

 private:
  Exit_Status status_;
  std::string text_;
};

}  // namespace tidyfold::cli
