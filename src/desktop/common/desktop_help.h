// The part of help that only a desktop can do: its windows and the What's This pointer.
#pragma once

#include <wx/dialog.h>
#include <wx/frame.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "controls/interaction.h"
#include "controls/main_window.h"
#include "desktop/common/about_window.h"
#include "desktop/common/help_book.h"
#include "desktop/common/help_browser_window.h"
#include "desktop/common/whats_this_pointer.h"
#include "help/help.h"
#include "settings/registry.h"

namespace tidyfold {

// The help windows of one main window. The frame must outlive them.
class Desktop_Help : public Help_Platform {
 public:
  Desktop_Help(wxFrame& frame, MainWindow& window, Message_Box& message_box, Registry& registry);
  ~Desktop_Help() override;

  Help_Environment& Environment() { return environment_; }
  // The help book goes with the main window.
  void Close_Book() { book_->Close(); }

  std::int32_t Window_Handle() override { return book_->Window_Handle(); }
  std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                          std::uintptr_t data) override {
    return book_->HtmlHelpA(owner, file, command, data);
  }
  const Control* WhatsThisMode() override { return pointer_.Choose(); }

 private:
  Help_Environment environment_;
  Whats_This_Pointer pointer_;
  Help_Browser_Binder browser_;
  About_Window* about_;
  std::unique_ptr<Help_Book> book_;
};

// The book at its first page, for a dialog that opens before there is a main window.
void Show_Help_Over(wxDialog& dialog, Message_Box& message_box);

}  // namespace tidyfold
