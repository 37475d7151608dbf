// Finds the messages of an mbox file.
//
// A message begins at a separator line, "From " with a sender and a date, that is followed by header fields
// or stands behind a blank line. Its end depends on the writer: some quote body lines that begin with "From "
// as ">From ", others leave them alone and write a Content-Length header. A Content-Length is used if the
// next separator or the end of the file is where it says, and ignored otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "import/source_file.h"

namespace tidyfold {

// What speaks for the file having been cut off in its last message.
enum class Mbox_Cut {
  None,
  Line,    // its last line has no end: not much, as some programs end files so
  Header,  // its header has no end
  Length   // it says that it is longer, and can be trusted
};

struct Mbox_Message {
  std::int64_t begin = 0;    // its separator line
  std::int64_t content = 0;  // its first header
  std::int64_t end = 0;
  bool by_length = false;  // the end is from Content-Length
  Mbox_Cut cut = Mbox_Cut::None;
};

class Mbox_Reader {
 public:
  // `tick` is called about once for each megabyte read.
  Mbox_Reader(Source_File& file, std::function<void()> tick) : file_(file), tick_(std::move(tick)) {}

  // The next message; none at the end of the file.
  std::optional<Mbox_Message> Next();

  // The message without its separator and with the quoting of its body undone.
  std::string Text(const Mbox_Message& message);
  std::string Separator(const Mbox_Message& message);

 private:
  struct Header {
    std::int64_t end = 0;  // where the body begins, or the next message
    bool ended = false;    // by a blank line
    std::optional<std::int64_t> length;
  };

  bool Is_Separator(std::int64_t at);
  std::int64_t Line_End(std::int64_t at);
  std::int64_t Next_Separator(std::int64_t from);
  Header Read_Header(std::int64_t content);
  std::optional<std::int64_t> End_By_Length(const Header& header);
  // Of the message that ends with the file.
  Mbox_Cut Cut(const Header& header);

  Source_File& file_;
  std::function<void()> tick_;
  std::int64_t at_ = 0;
  std::int64_t lengths_right_ = 0;
  std::int64_t lengths_too_long_ = 0;
  std::int64_t missing_ = 0;  // bytes by which the Content-Length of the last message exceeds the file
};

// The end of the blank line behind a message's header; npos if there is none. Lines of the body alone are
// quoted.
std::size_t Mbox_Header_End(std::string_view text);

// Whether the text begins with a separator line; what follows that line must be in the text too.
bool Begins_With_Separator(std::string_view text, bool after_blank_line);

}  // namespace tidyfold
