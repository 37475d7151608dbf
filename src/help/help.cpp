#include "help/help.h"

#include "help/context_ids.h"

namespace tidyfold {

Help_Form Main_Help_Form(MainWindow& window) {
  Help_Form form{window.frmRemoveItems, window.controls};
  form.controls.insert(form.controls.end(), {&window.sbStatusBar, &window.cmddebug, &window.frmRemoveItems});
  return form;
}

Help::Help(MainWindow& window, Help_Environment& environment, Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      environment_(environment),
      errors_(errors),
      settings_(environment.registry),
      form_(Main_Help_Form(window)),
      html_help_(environment.program, environment.platform, message_box),
      browser_(environment.browser_window, settings_, message_box, errors),
      about_(window.frmAbout, environment.about_controls, environment.program) {
  browser_.Show_Help = [this] { html_help_.Show_Help(); };
  about_.Show_Home_Page = [this] { browser_.Show_Page(urls_.Home_Page); };
  for (Control* const control : form_.controls) control->Set_Whats_This_Help_ID(Context_ID(control->Name()));
  for (TypeBox& type : window.chkType)
    type.box.Set_Whats_This_Help_ID(Context_ID(type.box.Name(), type.index));
}

void Help::Wire() {
  window_.mnuHelp.Click = [this] { mnuHelp_Click(); };
  window_.mnuWhatsThis.Click = [this] { mnuWhatsThis_Click(); };
  window_.mnuOnlineHelp.Click = [this] { mnuOnlineHelp_Click(); };
  window_.mnuAbout.Click = [this] { mnuAbout_Click(); };
}

void Help::Set_HTML_URLs() {
  urls_ = Html_Urls_Of(environment_.program);
}

void Help::Initialize_Help() {
  html_help_.Set_Help_File();
  html_help_.Initialize_WhatsThis_Help(form_);
}

void Help::Unload() {
  browser_.Close_Window();
}

void Help::mnuHelp_Click() {
  errors_.Run("mnuHelp_Click", [&] { html_help_.Show_Help(); });
}

void Help::mnuWhatsThis_Click() {
  errors_.Run("mnuWhatsThis_Click", [&] { html_help_.Activate_WhatsThis_Help(form_); });
}

void Help::mnuOnlineHelp_Click() {
  errors_.Run("mnuOnlineHelp_Click", [&] { browser_.Show_Page(urls_.Help_Index); });
}

void Help::mnuAbout_Click() {
  errors_.Run("mnuAbout_Click", [&] { about_.Show(); });
}

}  // namespace tidyfold
