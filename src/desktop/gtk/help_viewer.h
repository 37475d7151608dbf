// A window on a compiled help book, for systems that have no viewer of their own.
#pragma once

#include <wx/html/helpctrl.h>

#include <memory>
#include <string>

namespace tidyfold {

// Contents, index and search, beside the other windows.
class Help_Viewer {
 public:
  Help_Viewer();
  ~Help_Viewer();

  // Shows a page of the book, or the book's first page where none is named. False where the book cannot be
  // opened or has no such page.
  bool Open(const std::string& file, const std::string& page);
  void Close();

 private:
  bool Take_Book(const std::string& file);

  std::string file_;
  std::unique_ptr<wxHtmlHelpController> controller_;
};

}  // namespace tidyfold
