// The window that says what the program is.
#pragma once

#include <wx/dialog.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "controls/widgets.h"
#include "help/about.h"

namespace tidyfold {

// Shows the model frmAbout above its parent, not modally. Esc closes it.
class About_Window : public wxDialog {
 public:
  About_Window(wxWindow* parent, Form& form, About_Controls& controls);
  ~About_Window() override;

 private:
  wxTextCtrl* Add_Text(const TextBox& model, long style);
  void Show_Form();

  Form& form_;
  About_Controls& controls_;
  wxStaticText* heading_;
  wxTextCtrl* version_;
  wxTextCtrl* notice_;
  wxTextCtrl* licences_;
};

}  // namespace tidyfold
