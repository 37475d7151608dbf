// The window that shows a page of the site, where the program was built with a view of Web pages.
#pragma once

#include <string>

#include "help/help_browser.h"

namespace tidyfold {

class Help_Browser_Frame {
 public:
  virtual ~Help_Browser_Frame() = default;
  // Follows the model's size and visibility.
  virtual void Show_Form() = 0;
  // Loads the page, and brings the window to the front where it is shown.
  virtual void Load(const std::string& address) = 0;
  // Destroys the window.
  virtual void End() = 0;
};

// None where there is no view of Web pages: the program was built without one, or the system lacks it.
Help_Browser_Frame* Make_Help_Browser_Frame(Help_Browser_Window& model);

}  // namespace tidyfold
