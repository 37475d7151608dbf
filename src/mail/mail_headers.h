// The header fields of messages and of their parts, found in one pass and without copying.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>

namespace tidyfold {

// The fields that importers read, in the order of their names in mail_headers.cpp.
enum class Mail_Field {
  From,
  Sender,
  To,
  Subject,
  Sent,
  Received,
  Message_Id,
  List_Id,
  Status,
  X_Status,
  X_Mozilla_Status,
  X_Gmail_Labels,
  Content_Type,
  Content_Transfer_Encoding,
  Content_Disposition,
  Content_Id,
  X_Apple_Content_Length
};

// Values are views into the text, still folded and encoded, and cut at 1 MB. However many fields a header
// has, this takes the same room.
class Mail_Headers {
 public:
  // The topmost field of that name; empty if there is none.
  std::string_view operator[](Mail_Field field) const { return values_[static_cast<std::size_t>(field)]; }
  bool Empty() const { return !any_; }

  // Reads the fields at the beginning of the text and returns where the body begins. A line that is no field
  // is skipped if fields follow it; otherwise the body begins there. Stops in front of a line that begins
  // with "--" if `ends_part` says so.
  std::size_t Read(std::string_view text, const std::function<bool(std::string_view line)>& ends_part = {});

 private:
  static constexpr std::size_t count = static_cast<std::size_t>(Mail_Field::X_Apple_Content_Length) + 1;

  std::array<std::string_view, count> values_ = {};
  bool any_ = false;
};

// Whether the text begins with a header field ("Name: ...").
bool Begins_With_Header(std::string_view text);

// Whether the text begins with the header of a mail: fields, some of which every mail has, and no more than
// one broken line among them.
bool Begins_With_Mail_Headers(std::string_view text);

// The text without a byte order mark and empty lines at its beginning.
std::string_view Without_Lead_In(std::string_view text);

// The line at the beginning of the text, without its end.
std::string_view First_Line(std::string_view text);

// ASCII letters only, as in all names of mail.
bool Same_Name(std::string_view left, std::string_view right);

}  // namespace tidyfold
