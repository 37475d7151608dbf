#include "desktop/common/desktop_help.h"

#include <wx/filename.h>
#include <wx/stdpaths.h>
#include <wx/utils.h>

#ifdef __WXMSW__
#include "help/system_html_help.h"
#else
#include "desktop/gtk/help_viewer.h"
#endif

#include "desktop/common/text_conversion.h"

namespace tidyfold {

#ifdef __WXMSW__
class Help_Viewer {};  // the system's own
#endif

namespace {

// What was built in, unless the environment variable TIDYFOLD_SITE names another site.
Program_Info This_Program() {
  const wxFileName program(wxStandardPaths::Get().GetExecutablePath());
  Program_Info info = Tidyfold_Info(From_Wx(program.GetPath()));
  if (wxString site; wxGetEnv("TIDYFOLD_SITE", &site)) info.Site = From_Wx(site);
  return info;
}

}  // namespace

Desktop_Help::Desktop_Help(wxFrame& frame, MainWindow& window, Message_Box& message_box)
    : frame_(frame),
      registry_(Make_System_Registry([&message_box](const std::string& text) { message_box.Show(text); })),
      environment_{*this, *registry_, This_Program(), {}, {}},
      pointer_(frame, window),
      browser_(environment_.browser_window, message_box),
      about_(new About_Window(&frame, window.frmAbout, environment_.about_controls)) {}

Desktop_Help::~Desktop_Help() {
  about_->Destroy();
}

void Desktop_Help::Close_Book() {
  viewer_.reset();
}

#ifdef __WXMSW__

std::int32_t Desktop_Help::Window_Handle() {
  return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(frame_.GetHandle()));
}

std::intptr_t Desktop_Help::HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                                      std::uintptr_t data) {
  return System_HtmlHelpA(owner, file, command, data);
}

#else

std::int32_t Desktop_Help::Window_Handle() {
  return frame_.GetId();
}

std::intptr_t Desktop_Help::HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t,
                                      std::uintptr_t) {
  constexpr std::string_view divider = "::/";
  const auto end = file.find(divider);
  const std::string page = end == std::string::npos ? std::string() : file.substr(end + divider.size());
  if (viewer_ == nullptr) viewer_ = std::make_unique<Help_Viewer>();
  return viewer_->Open(file.substr(0, end), page) ? owner : 0;
}

#endif

}  // namespace tidyfold
