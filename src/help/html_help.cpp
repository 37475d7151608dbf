#include "help/html_help.h"

#include "base/numbers.h"
#include "base/text.h"
#include "help/context_ids.h"
#include "help/file_names.h"
#include "settings/number_texts.h"

namespace tidyfold {

HTML_Help::HTML_Help(Program_Info& application, Help_Platform& platform, Message_Box& message_box)
    : application_(application), platform_(platform), message_box_(message_box), errors_(message_box) {
  errors_.Trap_Errors = true;
}

void HTML_Help::Show_Help() {
  errors_.Run("Show_Help", [&] { Open({}); });
}

// Without a page, opens the default topic.
void HTML_Help::Open(std::string_view page) {
  if (Trim(help_file_).empty()) {
    message_box_.Show("Help file not found.", Buttons::OK_Only, Icon::Critical);
    return;
  }
  std::string file = help_file_;
  if (!page.empty()) file.append("::/").append(page);
  if (platform_.HtmlHelpA(window_handle_, file, 0, 0) == 0)
    message_box_.Show("Help file " + help_file_ + " could not be opened", Buttons::OK_Only, Icon::Critical);
}

void HTML_Help::Set_Help_File() {
  // The labels stay until all of them go at once.
  errors_.Run("Set_Help_File", [&] {
    errors_.stack.PUSH("Set_Help_File - Create Object");
    std::string path = application_.HelpFile;
    if (FileExists(path)) {
      errors_.stack.PUSH("Set_Help_File - Set Help - Design Time");
    } else {
      errors_.stack.PUSH("Set_Help_File - Set Help - Run Time");
      path = BuildPath(application_.Path,
                       GetBaseName(application_.HelpFile) + "." + GetExtensionName(application_.HelpFile));
      if (!FileExists(path)) path.clear();
    }
    errors_.stack.PUSH("Set_Help_File - Save Settings");
    application_.HelpFile = path;
    help_file_ = path;
    window_handle_ = platform_.Window_Handle();
    errors_.stack.Clear();
  });
}

void HTML_Help::Initialize_WhatsThis_Help(const Help_Form& form) {
  errors_.Run("Initialize_WhatsThis_Help", [&] {
    Transfer_WhatsThisHelpIDs(form, "COPY");
    Transfer_WhatsThisHelpIDs(form, "ZERO");
  });
}

void HTML_Help::Activate_WhatsThis_Help(const Help_Form& form) {
  errors_.Run("Activate_WhatsThis_Help", [&] {
    Transfer_WhatsThisHelpIDs(form, "GET");
    const Control* const chosen = platform_.WhatsThisMode();
    const std::int32_t topic = chosen == nullptr ? 0 : chosen->Whats_This_Help_ID();
    Transfer_WhatsThisHelpIDs(form, "ZERO");
    if (const std::string_view page = Context_Page(topic); !page.empty()) Open(page);
  });
}

void HTML_Help::Transfer_WhatsThisHelpIDs(const Help_Form& form, std::string_view mode) {
  errors_.Run("Transfer_WhatsThisHelpIDs", [&] {
    for (Control* const control : form.controls) {
      if (mode == "COPY") {
        control->Set_Tag(std::to_string(control->Whats_This_Help_ID()));
      } else if (mode == "ZERO") {
        control->Set_Whats_This_Help_ID(0);
      } else if (mode == "GET") {
        control->Set_Whats_This_Help_ID(Rounded<std::int32_t>(Leading_Number(control->Tag())));
      }
    }
  });
}

}  // namespace tidyfold
