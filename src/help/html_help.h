// The compiled help book, and the help topics of controls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "controls/widgets.h"
#include "errors/procedure.h"
#include "help/program_info.h"

namespace tidyfold {

// The platform's part in help.
class Help_Platform {
 public:
  virtual ~Help_Platform() = default;
  // The window that help windows belong to.
  virtual std::int32_t Window_Handle() = 0;
  // Opens a book: at its default topic, or at the page after "::/" in the file's name. Command and data are
  // 0. Returns the help window's handle, 0 where the book cannot be opened. The help window runs beside the
  // others.
  virtual std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                                  std::uintptr_t data) = 0;
  // What's This mode: the pointer changes, and the next click, which does nothing else, chooses a control,
  // enabled or not. Returns that control, or none where the mode was left.
  virtual const Control* WhatsThisMode() = 0;
};

// A form and its controls, in the form's order.
struct Help_Form {
  Form& form;
  std::vector<Control*> controls;
};

// Reports its failures through an ErrorStack of its own.
class HTML_Help {
 public:
  HTML_Help(Program_Info& application, Help_Platform& platform, Message_Box& message_box);

  // Opens the book at its default topic.
  void Show_Help();
  // Searches for the book where it was built and beside the program, once.
  void Set_Help_File();
  // Once per form: moves the designed topics into the tags, so that the platform does not open them by
  // itself.
  void Initialize_WhatsThis_Help(const Help_Form& form);
  // Lets the person point at a control, and opens its topic.
  void Activate_WhatsThis_Help(const Help_Form& form);
  // "COPY": identifiers into tags; "ZERO": identifiers become 0; "GET": identifiers out of the tags.
  void Transfer_WhatsThisHelpIDs(const Help_Form& form, std::string_view mode);

  // Empty: no book was found.

 private:
  void Open(std::string_view page);

  Program_Info& application_;
  Help_Platform& platform_;
  Message_Box& message_box_;
  Error_Handler errors_;
  std::string help_file_;
  std::int32_t window_handle_ = 0;
};

}  // namespace tidyfold
