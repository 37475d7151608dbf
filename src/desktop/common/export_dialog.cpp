#include "desktop/common/export_dialog.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/stdpaths.h>
#include <wx/textctrl.h>

#include "desktop/common/accessibility.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Unscaled pixels.
constexpr int margin = 12, gap = 8, directory_width = 420, text_width = 460;

struct Form_Name {
  Export_Form form;
  const char* name;
};
constexpr Form_Name forms[] = {{Export_Form::Maildir, "Maildir: a folder of files, marks in their names"},
                               {Export_Form::Mbox, "mbox: a file for a folder"},
                               {Export_Form::Eml, "EML: a file for a message, named after it"}};

}  // namespace

Export_Dialog::Export_Dialog(wxWindow* parent, const std::string& folder)
    : wxDialog(parent, wxID_ANY, "Export", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
  Speak_As_Dialog(*this);
  SetName("Export_Dialog");
  auto* const column = new wxBoxSizer(wxVERTICAL);
  constexpr std::size_t longest_name = 40;  // a long word would not wrap
  wxString name = To_One_Line(folder);
  if (name.length() > longest_name) name = name.Left(longest_name) + "...";
  const wxString what =
      folder.empty() ? wxString("All folders are written below the one that you name.")
                     : "\"" + name + "\" and all folders below it are written below the one that you name.";
  auto* const text = new wxStaticText(
      this, wxID_ANY,
      what +
          " Nothing that is there is overwritten. What is written is read back and compared.\n\n"
          "Appointments and tasks become iCalendar files, contacts vCards, notes and journal entries text.");
  text->Wrap(FromDIP(text_width));
  column->Add(text, wxSizerFlags().Expand().Border(wxALL, FromDIP(margin)));

  auto* const fields = new wxFlexGridSizer(2, FromDIP(wxSize(gap, gap)));
  fields->AddGrowableCol(1);
  // A label comes before what it names, for its mnemonic.
  fields->Add(new wxStaticText(this, wxID_ANY, "&Folder:"), wxSizerFlags().CentreVertical());
  directory_ = new wxDirPickerCtrl(this, wxID_ANY, wxStandardPaths::Get().GetDocumentsDir(),
                                   "Where to export to", wxDefaultPosition,
                                   FromDIP(wxSize(directory_width, -1)), wxDIRP_USE_TEXTCTRL | wxDIRP_SMALL);
  directory_->SetName("Directory");
  fields->Add(directory_, wxSizerFlags(1).Expand());
  fields->Add(new wxStaticText(this, wxID_ANY, "&Mail as:"), wxSizerFlags().CentreVertical());
  form_ = new wxChoice(this, wxID_ANY);
  form_->SetName("Form");
  for (const Form_Name& form : forms) form_->Append(form.name);
  form_->SetSelection(0);
  fields->Add(form_, wxSizerFlags(1).Expand());
  column->Add(fields, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, FromDIP(margin)));

  wxSizer* const buttons = CreateSeparatedButtonSizer(wxOK | wxCANCEL);
  FindWindow(wxID_OK)->SetLabel("&Export");
  column->Add(buttons, wxSizerFlags().Expand().Border(wxALL, FromDIP(margin)));
  SetSizerAndFit(column);
  CentreOnParent();
  // Before the buttons: what is asked for.
  directory_->GetTextCtrl()->SetFocus();
  // Not without a folder.
  Bind(
      wxEVT_UPDATE_UI, [this](wxUpdateUIEvent& event) { event.Enable(!Directory().empty()); }, wxID_OK);
}

Export_Form Export_Dialog::Form() const {
  return forms[form_->GetSelection()].form;
}

}  // namespace tidyfold
