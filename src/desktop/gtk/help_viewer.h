// A viewer of compiled help books, for systems without one.
#pragma once

#include <wx/dialog.h>
#include <wx/html/helpctrl.h>

#include <memory>
#include <string>

namespace tidyfold {

// One window with contents, index and search. Over a modal dialog it is one, too, as nothing else could be
// used.
class Help_Viewer {
 public:
  // `dialog` may be null.
  explicit Help_Viewer(wxDialog* dialog);
  ~Help_Viewer();

  // Shows a page of the book, or its first page if `page` is empty. False if the book cannot be opened or has
  // no such page.
  bool Open(const std::string& file, const std::string& page);
  void Close();

 private:
  bool Take_Book(const std::string& file);

  wxDialog* dialog_;
  std::string file_;
  std::unique_ptr<wxHtmlHelpController> controller_;
};

}  // namespace tidyfold
