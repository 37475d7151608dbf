#include "desktop/common/desktop_help.h"

#include <wx/filename.h>
#include <wx/stdpaths.h>
#include <wx/utils.h>

#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Holds the help book and the site: the program's own folder or, once installed, share/tidyfold beside it.
wxString Data_Folder() {
  const wxString folder = wxFileName(wxStandardPaths::Get().GetExecutablePath()).GetPath();
  wxFileName installed = wxFileName::DirName(folder + "/../share/tidyfold");
  installed.Normalize(wxPATH_NORM_DOTS);
  return installed.DirExists() ? installed.GetPath() : folder;
}

// The environment variable TIDYFOLD_SITE overrides the site that was built in.
Program_Info This_Program() {
  Program_Info info = Tidyfold_Info(From_Wx(Data_Folder()));
  if (wxString site; wxGetEnv("TIDYFOLD_SITE", &site)) info.Site = From_Wx(site);
  return info;
}

// Of a dialog: the book alone.
class Dialog_Help : public Help_Platform {
 public:
  explicit Dialog_Help(wxDialog& dialog) : book_(Make_Help_Book(dialog)) {}
  std::int32_t Window_Handle() override { return book_->Window_Handle(); }
  std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                          std::uintptr_t data) override {
    return book_->HtmlHelpA(owner, file, command, data);
  }
  const Control* WhatsThisMode() override { return nullptr; }

 private:
  std::unique_ptr<Help_Book> book_;
};

}  // namespace

void Show_Help_Over(wxDialog& dialog, Message_Box& message_box) {
  Program_Info info = This_Program();
  Dialog_Help platform(dialog);
  HTML_Help help(info, platform, message_box);
  help.Set_Help_File();
  help.Show_Help();
}

Desktop_Help::Desktop_Help(wxFrame& frame, MainWindow& window, Message_Box& message_box, Registry& registry)
    : environment_{*this, registry, This_Program(), {}, {}},
      pointer_(frame, window),
      browser_(environment_.browser_window, message_box),
      about_(new About_Window(&frame, window.frmAbout, environment_.about_controls)),
      book_(Make_Help_Book(frame)) {}

Desktop_Help::~Desktop_Help() {
  about_->Destroy();
}

}  // namespace tidyfold
