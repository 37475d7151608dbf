#include "desktop/common/about_window.h"

#include <wx/button.h>
#include <wx/hyperlink.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>

#include "desktop/common/accessibility.h"
#include "desktop/common/application_icon.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

constexpr int picture_side = 64;  // unscaled pixels
constexpr int notice_lines = 6, licence_columns = 86, licence_lines = 16;

}  // namespace

About_Window::About_Window(wxWindow* parent, Form& form, About_Controls& controls)
    : wxDialog(parent, wxID_ANY, To_Wx(form.Caption()), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      form_(form),
      controls_(controls) {
  Speak_As_Dialog(*this);
  SetName(To_Wx(form_.Name()));
  const int gap = FromDIP(12);

  heading_ = new wxStaticText(this, wxID_ANY, wxString());
  heading_->SetName(To_Wx(controls_.lblHeading.Name()));
  heading_->SetFont(heading_->GetFont().Bold().Scaled(1.6f));
  auto* const version_label = new wxStaticText(this, wxID_ANY, "Version");
  version_ = Add_Text(controls_.txtVersionNumber, wxBORDER_NONE);
  version_->SetBackgroundColour(GetBackgroundColour());
  auto* const link = new wxHyperlinkCtrl(this, wxID_ANY, To_Wx(controls_.Label3.Caption()), "tidyfold");
  link->SetName(To_Wx(controls_.Label3.Name()));
  link->SetToolTip(wxString());
  link->Bind(wxEVT_HYPERLINK, [this](wxHyperlinkEvent&) { tidyfold::Raise(controls_.Label3.Click); });
  auto* const version = new wxBoxSizer(wxHORIZONTAL);
  version->Add(version_label, wxSizerFlags().CentreVertical().Border(wxRIGHT, gap / 2));
  version->Add(version_, wxSizerFlags(1).CentreVertical());
  auto* const titles = new wxBoxSizer(wxVERTICAL);
  titles->Add(heading_);
  titles->Add(version, wxSizerFlags().Expand());
  titles->Add(link);
  auto* const top = new wxBoxSizer(wxHORIZONTAL);
  const wxSize picture = FromDIP(wxSize(picture_side, picture_side));
  top->Add(new wxStaticBitmap(this, wxID_ANY, Application_Picture(picture)),
           wxSizerFlags().CentreVertical().Border(wxRIGHT, gap * 3 / 2));
  top->Add(titles, wxSizerFlags(1).CentreVertical());

  notice_ =
      Add_Text(controls_.txtLegalNotice, wxTE_MULTILINE | wxTE_BESTWRAP | wxTE_NO_VSCROLL | wxBORDER_NONE);
  notice_->SetBackgroundColour(GetBackgroundColour());
  notice_->SetMinSize(wxSize(-1, notice_lines * notice_->GetCharHeight()));
  auto* const licences_label = new wxStaticText(this, wxID_ANY, "&Libraries and their licences:");
  licences_ = Add_Text(controls_.txtLicences, wxTE_MULTILINE | wxTE_BESTWRAP);
  // Licence texts are laid out with spaces.
  licences_->SetFont(wxFont(wxFontInfo(licences_->GetFont().GetPointSize()).Family(wxFONTFAMILY_TELETYPE)));
  licences_->SetMargins(FromDIP(6), -1);
  licences_->SetMinSize(
      wxSize(licence_columns * licences_->GetCharWidth(), licence_lines * licences_->GetCharHeight()));

  auto* const home = new wxButton(this, wxID_ANY, To_Wx(controls_.cmdHomePage.Caption()));
  home->SetName(To_Wx(controls_.cmdHomePage.Name()));
  home->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { tidyfold::Raise(controls_.cmdHomePage.Click); });
  auto* const ok = new wxButton(this, wxID_OK, To_Wx(controls_.ok_button.Caption()));
  ok->SetName(To_Wx(controls_.ok_button.Name()));
  ok->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { tidyfold::Raise(controls_.ok_button.Click); });
  ok->SetDefault();
  SetEscapeId(wxID_OK);
  auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
  buttons->Add(home);
  buttons->AddStretchSpacer();
  buttons->Add(ok);

  auto* const column = new wxBoxSizer(wxVERTICAL);
  const wxSizerFlags line = wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxTOP, gap * 3 / 2);
  column->Add(top, line);
  column->Add(notice_, line);
  column->Add(licences_label, line);
  column->AddSpacer(gap / 2);
  column->Add(licences_, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, gap * 3 / 2));
  column->Add(buttons, wxSizerFlags().Expand().Border(wxALL, gap * 3 / 2));
  SetSizerAndFit(column);

  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
    if (event.CanVeto()) event.Veto();
    tidyfold::Raise(form_.Close);
  });
  form_.changed = [this] { Show_Form(); };
}

About_Window::~About_Window() {
  form_.changed = nullptr;
}

wxTextCtrl* About_Window::Add_Text(const TextBox& model, long style) {
  auto* const text =
      new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_READONLY | style);
  text->SetName(To_Wx(model.Name()));
  return text;
}

void About_Window::Show_Form() {
  if (form_.Visible() && IsShown()) return wxDialog::Raise();
  if (form_.Visible() == IsShown()) return;
  if (!form_.Visible()) {
    Hide();
    return;
  }
  SetTitle(To_Wx(form_.Caption()));
  heading_->SetLabelText(To_Wx(controls_.lblHeading.Caption()));
  version_->ChangeValue(To_Wx(controls_.txtVersionNumber.Text()));
  notice_->ChangeValue(To_Lines(controls_.txtLegalNotice.Text()));
  licences_->ChangeValue(To_Lines(controls_.txtLicences.Text()));
  Layout();
  CentreOnParent();
  Show();
  FindWindow(wxID_OK)->SetFocus();
}

}  // namespace tidyfold
