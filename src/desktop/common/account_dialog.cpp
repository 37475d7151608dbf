#include "desktop/common/account_dialog.h"

#include <wx/button.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/utils.h>
#include <wx/valtext.h>

#include <algorithm>

#include "controls/interaction.h"
#include "desktop/common/accessibility.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Unscaled pixels.
constexpr int margin = 12, gap = 8, field_width = 320, text_width = 440, answer_lines = 4;
constexpr const char *tls_port = "993", *plain_port = "143";
const wxColour good(0x1B, 0x7F, 0x3B), bad(0xB0, 0x1E, 0x1E);

wxString Trimmed(const wxTextCtrl& field) {
  return field.GetValue().Trim().Trim(false);
}

}  // namespace

Account_Dialog::Account_Dialog(wxWindow* parent, Test test)
    : wxDialog(parent, wxID_ANY, "Open Mail Account", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
  Speak_As_Dialog(*this);
  SetName("Account_Dialog");
  auto* const column = new wxBoxSizer(wxVERTICAL);
  auto* const text = new wxStaticText(
      this, wxID_ANY,
      "A mailbox on a server (IMAP) is cleaned where it lies. Your provider tells you the server's name; the "
      "user is often the whole mail address.");
  text->Wrap(FromDIP(text_width));
  column->Add(text, wxSizerFlags().Expand().Border(wxALL, FromDIP(margin)));

  auto* const fields = new wxFlexGridSizer(2, FromDIP(wxSize(gap, gap)));
  fields->AddGrowableCol(1);
  server_ = Add_Text(*fields, "&Server:", "Server", "imap.example.org");
  user_ = Add_Text(*fields, "&User:", "User", "anna@example.org");
  fields->Add(new wxStaticText(this, wxID_ANY, "&Encryption:"), wxSizerFlags().CentreVertical());
  encryption_ = new wxChoice(this, wxID_ANY);
  encryption_->SetName("Encryption");
  encryption_->Append("TLS");
  encryption_->Append("");
  encryption_->SetSelection(0);
  fields->Add(encryption_, wxSizerFlags(1).Expand());
  port_ = Add_Text(*fields, "&Port:", "Port", "");
  port_->SetValidator(wxTextValidator(wxFILTER_DIGITS));
  password_ = Add_Text(*fields, "Pass&word:", "Password", "", wxTE_PASSWORD);
  password_->SetToolTip("Leave it empty where the keyring holds it.");
  fields->AddSpacer(0);
  keep_ = new wxCheckBox(this, wxID_ANY, "&Keep it in the keyring");
  keep_->SetName("Keep");
  fields->Add(keep_);
  command_ = Add_Text(*fields, "Or a co&mmand:", "Command", "pass show mail");
  command_->SetToolTip("A command whose first line is the password, or a token for OAuth.");
  column->Add(fields, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, FromDIP(margin)));

  auto* const trying = new wxButton(this, wxID_ANY, "&Test Connection");
  trying->SetName("Test");
  column->Add(trying, wxSizerFlags().Border(wxLEFT | wxRIGHT | wxTOP, FromDIP(margin)));
  answer_ = new wxStaticText(this, wxID_ANY, "", wxDefaultPosition,
                             wxSize(FromDIP(text_width), answer_lines * GetCharHeight()), wxST_NO_AUTORESIZE);
  answer_->SetName("Answer");
  column->Add(answer_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(margin)));
  wxSizer* const buttons = CreateSeparatedButtonSizer(wxOK | wxCANCEL);
  FindWindow(wxID_OK)->SetLabel("&Open");
  column->Add(buttons, wxSizerFlags().Expand().Border(wxALL, FromDIP(margin)));

  Follow_Server();
  Follow_Encryption();
  SetSizerAndFit(column);
  CentreOnParent();
  server_->SetFocus();
  server_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { Follow_Server(); });
  encryption_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { Follow_Encryption(); });
  trying->Bind(wxEVT_BUTTON, [this, test = std::move(test)](wxCommandEvent&) { Try(test); });
  const auto when_whole = [this](wxUpdateUIEvent& event) { event.Enable(Is_Whole()); };
  Bind(wxEVT_UPDATE_UI, when_whole, wxID_OK);
  Bind(wxEVT_UPDATE_UI, when_whole, trying->GetId());
  // A command takes the place of a password.
  const auto without_command = [this](wxUpdateUIEvent& event) { event.Enable(Trimmed(*command_).empty()); };
  Bind(wxEVT_UPDATE_UI, without_command, password_->GetId());
  Bind(
      wxEVT_UPDATE_UI,
      [this](wxUpdateUIEvent& event) { event.Enable(Trimmed(*command_).empty() && !password_->IsEmpty()); },
      keep_->GetId());
}

// A label comes before what it names, for its mnemonic.
wxTextCtrl* Account_Dialog::Add_Text(wxSizer& fields, const wxString& label, const wxString& name,
                                     const wxString& hint, long style) {
  fields.Add(new wxStaticText(this, wxID_ANY, label), wxSizerFlags().CentreVertical());
  auto* const field =
      new wxTextCtrl(this, wxID_ANY, "", wxDefaultPosition, FromDIP(wxSize(field_width, -1)), style);
  field->SetName(name);
  if (!hint.empty()) field->SetHint(hint);
  fields.Add(field, wxSizerFlags(1).Expand());
  return field;
}

bool Account_Dialog::Is_Whole() const {
  unsigned long port = 0;
  return !Trimmed(*server_).empty() && !Trimmed(*user_).empty() && port_->GetValue().ToULong(&port) &&
         port > 0 && port <= 0xFFFF;
}

// Only on this machine can nobody listen, so that nothing has to be encrypted.
void Account_Dialog::Follow_Server() {
  Store_Address address;
  address.host = From_Wx(Trimmed(*server_));
  const wxString other = address.Is_On_This_Machine() ? "None, on this machine only" : "STARTTLS";
  if (encryption_->GetString(1) != other) encryption_->SetString(1, other);
}

void Account_Dialog::Follow_Encryption() {
  const bool usual = port_->IsEmpty() || port_->GetValue() == tls_port || port_->GetValue() == plain_port;
  if (usual) port_->ChangeValue(encryption_->GetSelection() == 0 ? tls_port : plain_port);
}

Account_Choice Account_Dialog::Choice() const {
  Account_Choice choice;
  choice.address.kind =
      encryption_->GetSelection() == 0 ? Store_Address::Kind::Imap_Tls : Store_Address::Kind::Imap;
  choice.address.host = From_Wx(Trimmed(*server_).Lower());
  choice.address.user = From_Wx(Trimmed(*user_));
  unsigned long port = 0;
  port_->GetValue().ToULong(&port);
  choice.address.port = static_cast<std::uint16_t>(std::min(port, 0xFFFFUL));
  choice.command = From_Wx(Trimmed(*command_));
  if (choice.command.empty()) choice.password = From_Wx(password_->GetValue());
  choice.keeps_password = keep_->GetValue() && !choice.password.empty();
  return choice;
}

void Account_Dialog::Try(const Test& test) {
  Say("Connecting...", wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT));
  const Answer answer = test(Choice());
  Say(To_Wx(answer.text), answer.is_usable ? good : bad);
}

void Account_Dialog::Say(const wxString& text, const wxColour& colour) {
  answer_->SetForegroundColour(colour);
  answer_->SetLabelText(text);
  answer_->Wrap(answer_->GetClientSize().x);
  answer_->Update();
}

std::optional<Given_Password> Ask_For_Password(wxWindow* parent, const std::string& question) {
  wxDialog dialog(parent, wxID_ANY, application_title);
  dialog.SetName("Password_Dialog");
  const int border = dialog.FromDIP(margin);
  auto* const column = new wxBoxSizer(wxVERTICAL);
  auto* const text = new wxStaticText(&dialog, wxID_ANY, "");
  text->SetLabelText(To_Wx(question));
  text->Wrap(dialog.FromDIP(text_width));
  column->Add(text, wxSizerFlags().Expand().Border(wxALL, border));
  auto* const line = new wxBoxSizer(wxHORIZONTAL);
  line->Add(new wxStaticText(&dialog, wxID_ANY, "&Password:"),
            wxSizerFlags().CentreVertical().Border(wxRIGHT, dialog.FromDIP(gap)));
  auto* const field = new wxTextCtrl(&dialog, wxID_ANY, "", wxDefaultPosition,
                                     dialog.FromDIP(wxSize(field_width, -1)), wxTE_PASSWORD);
  field->SetName("Password");
  line->Add(field, wxSizerFlags(1));
  column->Add(line, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, border));
  auto* const keep = new wxCheckBox(&dialog, wxID_ANY, "&Keep it in the keyring");
  keep->SetName("Keep");
  column->Add(keep, wxSizerFlags().Border(wxALL, border));
  column->Add(dialog.CreateSeparatedButtonSizer(wxOK | wxCANCEL),
              wxSizerFlags().Expand().Border(wxALL, border));
  dialog.SetSizerAndFit(column);
  dialog.CentreOnParent();
  field->SetFocus();
  dialog.Bind(
      wxEVT_UPDATE_UI, [field](wxUpdateUIEvent& event) { event.Enable(!field->IsEmpty()); }, wxID_OK);
  if (dialog.ShowModal() != wxID_OK) return std::nullopt;
  return Given_Password{From_Wx(field->GetValue()), keep->GetValue()};
}

}  // namespace tidyfold
