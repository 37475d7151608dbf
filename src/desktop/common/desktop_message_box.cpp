#include "desktop/common/desktop_message_box.h"

#include <wx/app.h>
#include <wx/dirdlg.h>
#include <wx/evtloop.h>
#include <wx/msgdlg.h>
#include <wx/numdlg.h>
#include <wx/richmsgdlg.h>
#include <wx/stdpaths.h>
#include <wx/stopwatch.h>
#include <wx/utils.h>

#include "desktop/common/review_sheet.h"
#include "desktop/common/system_look.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

constexpr const char* silent_value = "Not Shown";

// The toolkit's own boxes know no style for no icon, and need none.
#ifdef __WXMSW__
constexpr long no_icon_style = wxICON_NONE;
#else
constexpr long no_icon_style = 0;
#endif

long Style(Buttons buttons, Icon icon) {
  const long style = icon == Icon::Critical ? wxICON_ERROR : wxICON_NONE;
  switch (buttons) {
    case Buttons::OK_Only:
      break;
    case Buttons::OK_Cancel:
      return style | wxOK | wxCANCEL | wxCANCEL_DEFAULT;
    case Buttons::Yes_No_Cancel:
      return style | wxYES_NO | wxCANCEL | wxCANCEL_DEFAULT;
    case Buttons::Yes_No:
    case Buttons::Retry_Stop:
      return style | wxYES_NO | wxNO_DEFAULT;
  }
  return style | wxOK;
}

Answer To_Answer(int pressed, Buttons buttons) {
  switch (pressed) {
    case wxID_OK:
      return Answer::OK;
    case wxID_YES:
      return buttons == Buttons::Retry_Stop ? Answer::Retry : Answer::Yes;
    case wxID_NO:
      return buttons == Buttons::Retry_Stop ? Answer::Cancel : Answer::No;
    default:
      return Safest_Answer(buttons);
  }
}

// A box that opens before its window is on the screen comes to lie behind it, without the keyboard. No
// desktop takes longer than this.
void Wait_Until_On_Screen(const wxWindow& window) {
  constexpr long longest = 2000;  // milliseconds
  wxEventLoopBase* const loop = wxEventLoopBase::GetActive();
  for (const wxStopWatch waited; loop != nullptr && !Is_On_Screen(window) && waited.Time() < longest;) {
    loop->YieldFor(wxEVT_CATEGORY_UI);
    wxMilliSleep(5);
  }
}

}  // namespace

template <class Ask>
auto Desktop_Message_Box::Open(const std::string& text, Ask&& ask) {
  if (opening) opening(text);
  ++open_boxes_;
  wxWindow* const front = wxGetActiveWindow();
  wxWindow* parent = front != nullptr ? wxGetTopLevelParent(front) : wxTheApp->GetTopWindow();
  if (parent != nullptr && !parent->IsShown()) parent = nullptr;
  if (parent != nullptr) Wait_Until_On_Screen(*parent);
  auto answer = ask(parent);
  --open_boxes_;
  if (closed) closed();
  return answer;
}

Answer Desktop_Message_Box::Show(const std::string& text, Buttons buttons, Icon icon,
                                 const std::string& title) {
  return Open(text, [&](wxWindow* parent) {
    wxMessageDialog dialog(parent, To_Lines(text), To_Wx(title), Style(buttons, icon) | wxCENTRE);
    if (buttons == Buttons::Retry_Stop) dialog.SetYesNoLabels("&Retry", "&Stop");
    return To_Answer(dialog.ShowModal(), buttons);
  });
}

void Desktop_Message_Box::Inform(const std::string& text) {
  // One line for each text.
  const std::string silent = not_shown_again ? not_shown_again->Text(silent_value) : std::string();
  if (("\n" + silent).find("\n" + text + "\n") != std::string::npos) return;
  const bool never_again = Open(text, [&](wxWindow* parent) {
    wxRichMessageDialog dialog(parent, To_Lines(text), application_title, wxOK | no_icon_style | wxCENTRE);
    if (not_shown_again) dialog.ShowCheckBox("&Do not show this again");
    dialog.ShowModal();
    return dialog.IsCheckBoxChecked();
  });
  if (never_again && not_shown_again) not_shown_again->Set_Text(silent_value, silent + text + "\n");
}

void Desktop_Message_Box::Show_All_Again() {
  if (not_shown_again && !not_shown_again->Text(silent_value).empty())
    not_shown_again->Set_Text(silent_value, "");
}

Answer Desktop_Message_Box::Show_Review(const Review& review) {
  return Open(review.Text(), [&](wxWindow* parent) {
    return Review_Sheet(parent, review).ShowModal() == wxID_OK ? Answer::OK : Answer::Cancel;
  });
}

std::optional<std::int32_t> Desktop_Message_Box::Ask_Number(const std::string& question, std::int32_t now,
                                                            std::int32_t least, std::int32_t most) {
  return Open(question, [&](wxWindow* parent) -> std::optional<std::int32_t> {
    wxNumberEntryDialog dialog(parent, To_Lines(question), wxString(), application_title, now, least, most);
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    return static_cast<std::int32_t>(dialog.GetValue());
  });
}

std::optional<std::string> Desktop_Message_Box::Ask_Directory(const std::string& question,
                                                              const std::string& now) {
  return Open(question, [&](wxWindow* parent) -> std::optional<std::string> {
    const wxString begin = now.empty() ? wxStandardPaths::Get().GetDocumentsDir() : To_Wx(now);
    wxDirDialog dialog(parent, To_Lines(question), begin, wxDD_DEFAULT_STYLE);
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    return From_Wx(dialog.GetPath());
  });
}

}  // namespace tidyfold
