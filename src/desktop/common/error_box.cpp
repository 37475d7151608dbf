#include "desktop/common/error_box.h"

#include <wx/msgdlg.h>

#include "controls/interaction.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

void Show_Error(wxWindow* parent, const std::string& text) {
  wxMessageDialog(parent, To_Lines(text), application_title, wxOK | wxICON_ERROR | wxCENTRE).ShowModal();
}

void Show_Not_Written(wxWindow* parent, const wxString& file) {
  Show_Error(parent, "\"" + From_Wx(file) +
                         "\" could not be written. Choose another place, or make room on the disk.");
}

}  // namespace tidyfold
