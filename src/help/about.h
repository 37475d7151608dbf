// The About window.
#pragma once

#include <functional>
#include <string>

#include "controls/widgets.h"
#include "help/program_info.h"

namespace tidyfold {

class LinkLabel : public Captioned {
 public:
  using Captioned::Captioned;
  std::function<void()> Click;
};

// The controls of the form frmAbout. The text boxes are read-only.
struct About_Controls {
  Captioned lblHeading{"lblHeading"};
  TextBox txtVersionNumber{"txtVersionNumber"};
  TextBox txtLegalNotice{"txtLegalNotice"};
  TextBox txtLicences{"txtLicences"};
  LinkLabel Label3{"Label3", "Tidyfold on the Web"};
  CommandButton cmdHomePage{"cmdHomePage", "&Home Page"};
  CommandButton ok_button{"ok_button", "OK"};
};

class About {
 public:
  About(Form& form, About_Controls& controls, const Program_Info& program);

  // Loads the window if necessary, and shows it, not modally.
  void Show();

  // Opens the home page that start-up has kept.
  std::function<void()> Show_Home_Page;

 private:
  void Form_Load();
  void Label3_Click();
  void cmdHomePage_Click();
  void ok_button_Click();

  Form& form_;
  About_Controls& controls_;
  const Program_Info& program_;
};

}  // namespace tidyfold
