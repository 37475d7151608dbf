// Conversion between UTF-8 and wxString.
#pragma once

#include <wx/string.h>

#include <string>
#include <string_view>

#include "base/text.h"

namespace tidyfold {

// Invalid UTF-8 becomes U+FFFD, where wxWidgets would return an empty text.
inline wxString To_Wx(std::string_view text) {
  const std::string valid = Valid_Utf8(text);
  return wxString::FromUTF8(valid.data(), valid.size());
}

// For one line of a list: a run of line breaks and tabs becomes one blank.
inline wxString To_One_Line(std::string_view text) {
  const wxString lines = To_Wx(text);
  const wxString gaps = "\r\n\t";
  if (lines.find_first_of(gaps) == wxString::npos) return lines;
  wxString line;
  for (const wxUniChar character : lines) {
    if (!gaps.Contains(character)) {
      line += character;
    } else if (!line.empty() && line.Last() != ' ') {
      line += ' ';
    }
  }
  return line;
}

// For a message or tooltip: CR LF becomes LF, the line break of wxWidgets.
inline wxString To_Lines(std::string_view text) {
  wxString lines = To_Wx(text);
  lines.Replace("\r\n", "\n");
  return lines;
}

inline std::string From_Wx(const wxString& text) {
  return text.utf8_string();
}

}  // namespace tidyfold
