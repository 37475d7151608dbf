// The program's own window for pages of the site.
#pragma once

#include <string>

#include "controls/interaction.h"
#include "help/help_browser.h"

namespace tidyfold {

class Help_Browser_Frame;

// Shows the model frmHelpBrowser, whose size is that of the client area, beside the other windows. The window
// is made when the model is loaded and destroyed when it is unloaded. Where there is no view of Web pages,
// the system's browser shows the page instead, and a box says so.
class Help_Browser_Binder {
 public:
  Help_Browser_Binder(Help_Browser_Window& model, Message_Box& message_box);
  Help_Browser_Binder(const Help_Browser_Binder&) = delete;
  Help_Browser_Binder& operator=(const Help_Browser_Binder&) = delete;
  ~Help_Browser_Binder();

 private:
  void Show_Form();
  void Navigate(const std::string& address);
  void Show_In_System_Browser(const std::string& address);

  Help_Browser_Window& model_;
  Message_Box& message_box_;
  Help_Browser_Frame* frame_ = nullptr;
};

}  // namespace tidyfold
