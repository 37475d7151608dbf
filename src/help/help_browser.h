// The program's own window for pages of the site.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "controls/widgets.h"
#include "errors/procedure.h"
#include "layout/class_elastic.h"
#include "settings/registry_routines.h"

namespace tidyfold {

// Shows one page at a time. The front end sets `Navigating` and raises `NavigateError` if a page cannot be
// loaded.
class WebBrowser : public Control {
 public:
  using Control::Control;
  void Navigate(const std::string& address) {
    address_ = address;
    Raise(Navigating, address_);
  }
  // The page asked for last.
  const std::string& Address() const { return address_; }

  std::function<void(const std::string& address)> Navigating;
  // `reason` is a sentence for the person; it may be empty.
  std::function<void(const std::string& address, const std::string& reason)> NavigateError;

 private:
  std::string address_;
};

struct Help_Browser_Window {
  Form frmHelpBrowser{"frmHelpBrowser", "Tidyfold Help"};
  WebBrowser WebBrowser1{"WebBrowser1"};
  std::vector<Control*> controls{&WebBrowser1};
};

// The window's size is kept in the settings. There is one window; a new page replaces the one it shows.
class Help_Browser {
 public:
  Help_Browser(Help_Browser_Window& window, Registry_Routines& settings, Message_Box& message_box,
               Error_Handler& errors);

  // Loads the window if necessary, goes to the page, and shows the window, not modally.
  void Show_Page(const std::string& address);
  // Unloads the window, if it is loaded.
  void Close_Window();

  // Offered when a page cannot be loaded.
  std::function<void()> Show_Help;

 private:
  void Form_Load();
  void Form_Resize();
  void Form_Unload();
  void Page_Failed(const std::string& address, const std::string& reason);

  Help_Browser_Window& window_;
  Form& form_;
  Registry_Routines& settings_;
  Message_Box& message_box_;
  Error_Handler& errors_;
  class_Elastic elastic_;
  bool telling_ = false;
};

}  // namespace tidyfold
