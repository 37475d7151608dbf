// The parts of a MIME message (RFC 2046), found in one pass that neither copies nor recurses.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "mail/mail_headers.h"

namespace tidyfold {

struct Mime_Part {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Mail_Headers headers;
  std::string type;       // "text/plain", in lower case
  std::string_view body;  // still encoded; of a multipart, what lies before its first part
  // Indexes into the list of parts:
  std::size_t first_child = none;
  std::size_t last_child = none;
  std::size_t next = none;  // the next part of the same multipart

  bool Is_Multipart() const { return type.starts_with("multipart/"); }
};

// No real message has more parts, or is nested deeper. What goes beyond that is left in the part around it,
// or out.
inline constexpr std::size_t most_parts = 10'000;
inline constexpr std::size_t deepest_part = 100;

// In the order of the text; the message itself comes first. Attached messages are not taken apart. The text
// must outlive the parts.
std::vector<Mime_Part> Split_Message(std::string_view text);

}  // namespace tidyfold
