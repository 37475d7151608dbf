// Boxes for failures that no procedure reports.
#pragma once

#include <wx/window.h>

#include <string>

namespace tidyfold {

void Show_Error(wxWindow* parent, const std::string& text);
void Show_Not_Written(wxWindow* parent, const wxString& file);

}  // namespace tidyfold
