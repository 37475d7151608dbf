// Comma-separated values.
#pragma once

#include <string>

#include "base/text.h"

namespace tidyfold {

// A field as it stands in a line (RFC 4180): quoted where it has to be. Bytes that are no UTF-8 become
// U+FFFD.
inline std::string Csv_Field(const std::string& text) {
  std::string valid = Valid_Utf8(text);
  if (valid.find_first_of(",\"\r\n") == std::string::npos) return valid;
  std::string quoted = "\"";
  for (const char character : valid) {
    if (character == '"') quoted += '"';
    quoted += character;
  }
  return quoted + '"';
}

}  // namespace tidyfold
