// Everything behind the Help menu.
#pragma once

#include "controls/main_window.h"
#include "help/about.h"
#include "help/help_browser.h"
#include "help/html_help.h"

namespace tidyfold {

// What help needs from a front end. The windows are models that the front end shows; frmAbout itself is one
// of the main window's models. Everything must outlive the help.
struct Help_Environment {
  Help_Platform& platform;
  Registry& registry;
  Program_Info program;
  Help_Browser_Window browser_window;
  About_Controls about_controls;
};

// The main window as What's This help sees it: everything on it that has a topic, and the form itself.
Help_Form Main_Help_Form(MainWindow& window);

class Help {
 public:
  Help(MainWindow& window, Help_Environment& environment, Message_Box& message_box, Error_Handler& errors);

  // Sets the Click handlers of the Help menu.
  void Wire();
  // The steps of start-up.
  void Set_HTML_URLs();
  void Initialize_Help();
  // Closes the help browser, which keeps its size for the next time.
  void Unload();

 private:
  void mnuHelp_Click();
  void mnuWhatsThis_Click();
  void mnuOnlineHelp_Click();
  void mnuAbout_Click();

  MainWindow& window_;
  Help_Environment& environment_;
  Error_Handler& errors_;
  Registry_Routines settings_;
  Html_Urls urls_;
  Help_Form form_;
  HTML_Help html_help_;
  Help_Browser browser_;
  About about_;
};

}  // namespace tidyfold
