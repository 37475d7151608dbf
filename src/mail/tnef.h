// TNEF, the form in which Outlook sends what MIME cannot hold: "winmail.dat".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/store_writer.h"

namespace tidyfold {

struct Tnef_Content {
  std::string body;  // UTF-8
  std::vector<New_Attachment> attachments;
};

// What can be read of a damaged file; nothing if it is no TNEF at all.
std::optional<Tnef_Content> Read_Tnef(std::string_view bytes);

}  // namespace tidyfold
