#include "desktop/common/help_browser_window.h"

#include <wx/app.h>
#include <wx/log.h>
#include <wx/utils.h>

#include <utility>

#include "desktop/common/help_browser_frame.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

Help_Browser_Binder::Help_Browser_Binder(Help_Browser_Window& model, Message_Box& message_box)
    : model_(model), message_box_(message_box) {
  model_.frmHelpBrowser.changed = [this] { Show_Form(); };
  model_.WebBrowser1.Navigating = [this](const std::string& address) { Navigate(address); };
}

Help_Browser_Binder::~Help_Browser_Binder() {
  model_.frmHelpBrowser.changed = nullptr;
  model_.WebBrowser1.Navigating = nullptr;
  if (frame_ != nullptr) frame_->End();
}

void Help_Browser_Binder::Show_Form() {
  if (!model_.frmHelpBrowser.Loaded()) {
    if (frame_ != nullptr) std::exchange(frame_, nullptr)->End();
    return;
  }
  if (frame_ == nullptr) frame_ = Make_Help_Browser_Frame(model_);
  if (frame_ != nullptr) frame_->Show_Form();
}

void Help_Browser_Binder::Navigate(const std::string& address) {
  if (frame_ == nullptr) {
    wxTheApp->CallAfter([this, address] { Show_In_System_Browser(address); });
    return;
  }
  frame_->Load(address);
}

void Help_Browser_Binder::Show_In_System_Browser(const std::string& address) {
  model_.frmHelpBrowser.Unload();
  const auto starts = [&address] {
    const wxLogNull told_below;
    return wxLaunchDefaultBrowser(To_Wx(address));
  };
  if (!starts()) {
    Raise(model_.WebBrowser1.NavigateError, address, std::string("No Web browser could be started."));
    return;
  }
  message_box_.Show(
      "Tidyfold has no window of its own for Web pages here. The page opens in your Web browser:\r\n" +
      address);
}

}  // namespace tidyfold
