#include "desktop/gtk/help_viewer.h"

#include <wx/display.h>
#include <wx/filesys.h>
#include <wx/html/helpdlg.h>
#include <wx/html/helpfrm.h>
#include <wx/html/helpwnd.h>
#include <wx/html/htmlwin.h>
#include <wx/image.h>
#include <wx/log.h>
#include <wx/mstream.h>
#include <wx/notebook.h>
#include <wx/splitter.h>
#include <wx/treectrl.h>

#include <filesystem>
#include <optional>

#include "desktop/common/application_icon.h"
#include "desktop/common/show_in_front.h"
#include "desktop/common/text_conversion.h"
#include "help/chm_book.h"

namespace tidyfold {

namespace {

// wxHtmlHelpController starts from a project file, which a compiled book does not contain; Book_Files makes
// one up.
constexpr const char* project_file = "book.hhp";

constexpr const char* window_name = "frmHelpViewer";
constexpr int wide = 920, high = 640, lists_wide = 300;  // unscaled pixels

// Addresses of the form "file:BOOK#chm:PAGE".
class Book_Files : public wxFileSystemHandler {
 public:
  bool CanOpen(const wxString& location) override { return GetProtocol(location) == "chm"; }

  wxFSFile* OpenFile(wxFileSystem&, const wxString& location) override {
    const std::string book = From_Wx(wxFileName::URLToFileName(GetLeftLocation(location)).GetFullPath());
    const std::string page =
        std::filesystem::path(From_Wx(GetRightLocation(location))).lexically_normal().generic_string();
    try {
      if (book_ == nullptr || book != file_) {
        book_ = std::make_unique<Chm_Book>(book);
        file_ = book;
      }
      const std::optional<std::string> text =
          page == project_file ? std::optional(book_->Project()) : book_->Read(page);
      if (!text) return nullptr;
      wxMemoryOutputStream bytes;
      bytes.Write(text->data(), text->size());
      return new wxFSFile(new wxMemoryInputStream(bytes), location, GetMimeTypeFromExt(location),
                          GetAnchor(location), wxDateTime());
    } catch (const Chm_Error& error) {
      wxLogError("%s", To_Wx(error.what()));
      return nullptr;
    }
  }

 private:
  std::string file_;
  std::unique_ptr<Chm_Book> book_;
};

// By default the window opens small, in a corner, with its lists cut off. Before it is shown: pages of lists
// that have no size yet would be too small for their scroll bars.
void Prepare(wxTopLevelWindow& frame) {
  frame.SetName(window_name);
  frame.SetIcons(Application_Icons());
  wxSize size = frame.FromDIP(wxSize(wide, high));
  size.DecTo(wxDisplay(&frame).GetClientArea().GetSize());
  frame.SetSize(size);
  frame.CentreOnScreen();
  if (auto* const panes = dynamic_cast<wxSplitterWindow*>(wxWindow::FindWindowByName("splitter", &frame)))
    panes->SetSashPosition(frame.FromDIP(lists_wide));
  if (auto* const contents = dynamic_cast<wxTreeCtrl*>(wxWindow::FindWindowByName("treeCtrl", &frame))) {
    wxTreeItemIdValue cookie;
    if (const wxTreeItemId book = contents->GetFirstChild(contents->GetRootItem(), cookie))
      contents->Expand(book);
  }
  if (const auto* const lists = dynamic_cast<wxNotebook*>(wxWindow::FindWindowByName("notebook", &frame)))
    for (std::size_t page = 0; page < lists->GetPageCount(); ++page) {
      lists->GetPage(page)->SetSize(frame.FromDIP(wxSize(lists_wide, high)));
      lists->GetPage(page)->Layout();
    }
  frame.Bind(wxEVT_CHAR_HOOK, [&frame](wxKeyEvent& event) {
    event.GetKeyCode() == WXK_ESCAPE ? static_cast<void>(frame.Close()) : event.Skip();
  });
}

class Book_Controller : public wxHtmlHelpController {
 public:
  using wxHtmlHelpController::wxHtmlHelpController;

 protected:
  wxHtmlHelpFrame* CreateHelpFrame(wxHtmlHelpData* data) override {
    return Prepared(wxHtmlHelpController::CreateHelpFrame(data));
  }
  wxHtmlHelpDialog* CreateHelpDialog(wxHtmlHelpData* data) override {
    return Prepared(wxHtmlHelpController::CreateHelpDialog(data));
  }

 private:
  template <typename Window>
  static Window* Prepared(Window* window) {
    Prepare(*window);
    return window;
  }
};

}  // namespace

Help_Viewer::Help_Viewer(wxDialog* dialog) : dialog_(dialog) {
  // The book's pictures.
  if (wxImage::FindHandler(wxBITMAP_TYPE_PNG) == nullptr) wxImage::AddHandler(new wxPNGHandler);
  // wxFileSystem keeps handlers until the program ends; one is enough.
  if (!wxFileSystem::HasHandlerForPath("file:x#chm:x")) wxFileSystem::AddHandler(new Book_Files);
}

Help_Viewer::~Help_Viewer() {
  Close();
}

bool Help_Viewer::Take_Book(const std::string& file) {
  if (controller_ != nullptr && file == file_) return true;
  Close();
  const wxLogNull quiet;  // the caller reports failures
  auto controller =
      std::make_unique<Book_Controller>(wxHF_TOOLBAR | wxHF_CONTENTS | wxHF_INDEX | wxHF_SEARCH |
                                            (dialog_ != nullptr ? wxHF_DIALOG | wxHF_MODAL : wxHF_FRAME),
                                        dialog_);
  controller->SetTitleFormat("Help: %s");
  controller->SetShouldPreventAppExit(false);
  const wxString book = wxFileName::FileNameToURL(wxFileName(To_Wx(file)));
  if (!controller->AddBook(book + "#chm:" + project_file)) return false;
  controller_ = std::move(controller);
  file_ = file;
  return true;
}

bool Help_Viewer::Open(const std::string& file, const std::string& page) {
  try {
    const Chm_Book book(file);
    if (!Take_Book(file)) return false;
    if (!controller_->Display(To_Wx(page.empty() ? book.Default_Page() : page))) return false;
    // A modal one has been closed by now.
    if (dialog_ != nullptr) return true;
  } catch (const Chm_Error&) {
    return false;
  }
  Show_In_Front(*controller_->GetFrame());
  return true;
}

void Help_Viewer::Close() {
  if (controller_ != nullptr) controller_->Quit();
  controller_.reset();
}

}  // namespace tidyfold
