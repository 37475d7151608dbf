#include "desktop/common/item_window.h"

#include <wx/button.h>
#include <wx/ffile.h>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/log.h>
#include <wx/panel.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <cmath>

#include "base/dates.h"
#include "desktop/common/application_icon.h"
#include "desktop/common/error_box.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

wxString Date_And_Time(Date date) {
  if (date == no_date) return {};
  const auto minutes = static_cast<int>(std::lround((date - std::floor(date)) * 24 * 60)) % (24 * 60);
  return wxString::Format("%s  %02d:%02d", To_Wx(Format_Date(date)), minutes / 60, minutes % 60);
}

wxString Size_Text(std::int64_t bytes) {
  return wxFileName::GetHumanReadableSize(
      wxULongLong(static_cast<wxULongLong_t>(std::max<std::int64_t>(bytes, 0))), "0 bytes", 1,
      wxSIZE_CONV_SI);
}

wxString Attachments(const Displayed_Item& item) {
  wxString line;
  for (const New_Attachment& attachment : item.attachments) {
    if (!line.empty()) line += ",  ";
    line += To_One_Line(attachment.name) + " (" + Size_Text(attachment.size) + ")";
  }
  return line;
}

wxString Without_Forbidden_Characters(const wxString& name) {
  const wxString forbidden = wxFileName::GetForbiddenChars() + "/";
  wxString allowed;
  for (const wxUniChar character : name)
    allowed += forbidden.Contains(character) || character < ' ' ? wxUniChar('_') : character;
  return allowed.Left(100).Trim();
}

}  // namespace

Item_Window::Item_Window(wxWindow* parent, const Displayed_Item& item)
    : wxFrame(parent, wxID_ANY, item.subject.empty() ? wxString("(no subject)") : To_One_Line(item.subject),
              wxDefaultPosition, parent->FromDIP(wxSize(680, 560)),
              wxDEFAULT_FRAME_STYLE | wxFRAME_NO_TASKBAR),
      item_(item) {
  SetName("frmItem");
  SetIcons(Application_Icons());
  auto* const surface = new wxPanel(this);
  const int gap = FromDIP(12);

  auto* const facts = new wxFlexGridSizer(2, FromDIP(wxSize(12, 4)));
  facts->AddGrowableCol(1);
  const auto fact = [&](const wxString& name, const wxString& value) {
    if (value.empty()) return;
    auto* const label = new wxStaticText(surface, wxID_ANY, name);
    label->SetForegroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
    facts->Add(label, wxSizerFlags().Right());
    auto* const text = new wxStaticText(surface, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                        wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
    text->SetLabelText(value);
    text->SetToolTip(value);
    facts->Add(text, wxSizerFlags(1).Expand());
  };
  const bool mail = item_.item_class == item_class::mail;
  fact(mail ? "From:" : "By:", To_One_Line(item_.sender));
  fact("To:", To_One_Line(item_.recipients));
  fact("Received:", Date_And_Time(item_.received));
  fact("Ends:", Date_And_Time(item_.end));
  fact("Due:", Date_And_Time(item_.due));
  fact("Completed:", Date_And_Time(item_.completed));
  fact("Changed:", Date_And_Time(item_.last_modified));
  fact("Folder:", To_One_Line(item_.folder_name));
  fact("Size:", Size_Text(item_.size));
  fact("Attachments:", Attachments(item_));

  auto* const subject = new wxStaticText(surface, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                         wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
  subject->SetFont(subject->GetFont().Bold().Scaled(1.2f));
  subject->SetLabelText(GetTitle());

  auto* const page = new wxPanel(surface, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_THEME);
  page->SetBackgroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX));
  auto* const text = new wxTextCtrl(page, wxID_ANY, To_Lines(item_.body), wxDefaultPosition, wxDefaultSize,
                                    wxTE_MULTILINE | wxTE_READONLY | wxTE_BESTWRAP | wxBORDER_NONE);
  text->SetName("txtItemBody");
  auto* const page_sizer = new wxBoxSizer(wxVERTICAL);
  page_sizer->Add(text, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(8)));
  page->SetSizer(page_sizer);

  auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
  if (!item_.raw_message.empty()) {
    auto* const save = new wxButton(surface, wxID_SAVEAS, "&Save as EML...");
    save->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Save_As_Eml(); });
    buttons->Add(save);
  }
  buttons->AddStretchSpacer();
  auto* const close = new wxButton(surface, wxID_CLOSE);
  close->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
  buttons->Add(close);

  auto* const column = new wxBoxSizer(wxVERTICAL);
  column->Add(subject, wxSizerFlags().Expand().Border(wxALL, gap));
  column->Add(facts, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, gap));
  column->Add(page, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, gap));
  column->Add(buttons, wxSizerFlags().Expand().Border(wxALL, gap));
  surface->SetSizer(column);
  Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (event.GetKeyCode() != WXK_ESCAPE) return event.Skip();
    Close();
  });
  text->SetFocus();
  CentreOnParent();
}

void Item_Window::Save_As_Eml() {
  wxFileDialog dialog(this, "Save as EML", wxString(), Without_Forbidden_Characters(GetTitle()) + ".eml",
                      "Messages (*.eml)|*.eml|All files|*", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  if (dialog.ShowModal() != wxID_OK) return;
  const wxLogNull quiet;
  wxFFile file(dialog.GetPath(), "wb");
  const bool written =
      file.IsOpened() &&
      file.Write(item_.raw_message.data(), item_.raw_message.size()) == item_.raw_message.size() &&
      file.Close();
  if (!written) Show_Not_Written(this, dialog.GetPath());
}

}  // namespace tidyfold
