#include "help/help_browser.h"

#include <utility>

namespace tidyfold {

namespace {

// 760 x 560 pixels at 96 DPI.
constexpr Twips designed_width = 11400, designed_height = 8400;
// A saved height below this is ignored: nobody wants it back.
constexpr double lowest_saved_height = 5000;

}  // namespace

Help_Browser::Help_Browser(Help_Browser_Window& window, Registry_Routines& settings, Message_Box& message_box,
                           Error_Handler& errors)
    : window_(window),
      form_(window.frmHelpBrowser),
      settings_(settings),
      message_box_(message_box),
      errors_(errors) {
  form_.Resize = [this] { Form_Resize(); };
  form_.Close = [this] { Form_Unload(); };
  window_.WebBrowser1.NavigateError = [this](const std::string& address, const std::string& reason) {
    Page_Failed(address, reason);
  };
}

void Help_Browser::Show_Page(const std::string& address) {
  errors_.Run("frmHelpBrowser_Show_Page", [&] {
    if (!form_.Loaded()) Form_Load();
    window_.WebBrowser1.Navigate(address);
    const bool first_shown = !form_.Visible();
    form_.Show();
    if (first_shown) Form_Resize();
  });
}

void Help_Browser::Close_Window() {
  if (form_.Loaded()) Form_Unload();
}

void Help_Browser::Form_Load() {
  errors_.Run("frmHelpBrowser_Load", [&] {
    form_.Set_Width(designed_width);
    form_.Set_Height(designed_height);
    window_.WebBrowser1.Set_Left(0);
    window_.WebBrowser1.Set_Top(0);
    window_.WebBrowser1.Set_Width(designed_width);
    window_.WebBrowser1.Set_Height(designed_height);
    elastic_.Init(form_, window_.controls);
    form_.Load();
    const double height = Leading_Number(settings_.Get_Setting(setting::help_screen_height));
    if (height < lowest_saved_height) return;
    // Each assignment raises Resize.
    form_.Set_Height(static_cast<Twips>(height));
    Form_Resize();
    form_.Set_Width(static_cast<Twips>(Leading_Number(settings_.Get_Setting(setting::help_screen_width))));
    Form_Resize();
  });
}

void Help_Browser::Form_Resize() {
  errors_.Run("frmHelpBrowser_Resize", [&] { elastic_.FormResize(form_); });
}

void Help_Browser::Form_Unload() {
  errors_.Run("frmHelpBrowser_Unload", [&] {
    settings_.Save_Setting(setting::help_screen_height, form_.Height());
    settings_.Save_Setting(setting::help_screen_width, form_.Width());
    form_.Unload();
  });
}

void Help_Browser::Page_Failed(const std::string& address, const std::string& reason) {
  // No second question for pages that fail while this one is open.
  if (std::exchange(telling_, true)) return;
  errors_.Run("WebBrowser1_NavigateError", [&] {
    std::string text = "The page " + address + " could not be loaded.\r\n";
    if (!reason.empty()) text += reason + "\r\n";
    text += "\r\nThe help book holds the same topics. Open it?";
    if (message_box_.Show(text, Buttons::Yes_No) == Answer::Yes) Raise(Show_Help);
  });
  telling_ = false;
}

}  // namespace tidyfold
