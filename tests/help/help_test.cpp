#include "help/help.h"

#include <gtest/gtest.h>

#include "doubles/scripted_message_box.h"
#include "doubles/temporary_directory.h"
#include "help/file_names.h"
#include "settings/file_registry.h"

namespace tidyfold {
namespace {

class Fake_Platform : public Help_Platform {
 public:
  std::int32_t Window_Handle() override { return 77; }
  std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                          std::uintptr_t data) override {
    EXPECT_EQ(owner, 77);
    EXPECT_EQ(command + data, 0u);
    opened.push_back(file);
    return opens ? 1 : 0;
  }
  const Control* WhatsThisMode() override { return point(); }

  std::vector<std::string> opened;
  bool opens = true;
  std::function<const Control*()> point = [] { return nullptr; };
};

class Help_Test : public testing::Test {
 protected:
  Help_Test() {
    for (const char* folder : {"run", "built"}) std::filesystem::create_directories(folder_ / folder);
    environment_.program.HelpFile = (folder_ / "built" / "A.Book.chm").string();
    environment_.program.Path = (folder_ / "run").string();
    environment_.browser_window.WebBrowser1.Navigating = [this](const std::string& address) {
      pages_.push_back(address);
    };
    errors_.Trap_Errors = true;
    help_.Wire();
    help_.Set_HTML_URLs();
  }

  std::string Put(const char* file) { return Write_Bytes(folder_ / file, "x").make_preferred().string(); }

  Temporary_Directory folder_;
  Scripted_Message_Box box_;
  Error_Handler errors_{box_};
  File_Registry registry_{folder_ / "registry.json", nullptr};
  Registry_Routines settings_{registry_};
  Fake_Platform platform_;
  MainWindow window_;
  Help_Environment environment_{platform_, registry_, {}, {}, {}};
  Help_Browser_Window& browser_ = environment_.browser_window;
  Help help_{window_, environment_, box_, errors_};
  std::vector<std::string> pages_;
};

TEST_F(Help_Test, The_Book_Is_Looked_For_Where_It_Was_Built_And_Then_Beside_The_Program) {
  help_.Initialize_Help();
  platform_.point = [this] { return &window_.chkTurbo; };
  for (const MenuItem* command : {&window_.mnuHelp, &window_.mnuWhatsThis}) {
    box_.Expect(Exact("Help file not found."), Buttons::OK_Only, Answer::OK);
    command->Click();
  }
  for (const char* file : {"run/A.Book.chm", "built/A.Book.chm"}) {
    environment_.program.HelpFile = (folder_ / "built" / "A.Book.chm").string();
    const std::string path = Put(file);
    help_.Initialize_Help();
    window_.mnuHelp.Click();
    EXPECT_EQ(platform_.opened.back(), path);
  }
  platform_.opens = false;
  box_.Expect(Exact("Help file " + environment_.program.HelpFile + " could not be opened"), Buttons::OK_Only,
              Answer::OK);
  window_.mnuHelp.Click();
}

TEST_F(Help_Test, Whats_This_Opens_The_Topic_Of_The_Control_And_Identifiers_Live_Only_Meanwhile) {
  const std::string book = Put("run/A.Book.chm");
  const std::vector<Control*> controls = Main_Help_Form(window_).controls;
  for (const Control* control : controls) EXPECT_NE(control->Whats_This_Help_ID(), 0) << control->Name();
  help_.Initialize_Help();
  window_.chkTurbo.Set_Enabled(false);
  platform_.point = [this] { return &window_.chkTurbo; };
  window_.mnuWhatsThis.Click();
  platform_.point = [this] { return &window_.chkType[5].box; };
  window_.mnuWhatsThis.Click();
  const std::string topics = book + "::/controls/";
  EXPECT_EQ(platform_.opened, (std::vector{topics + "chkTurbo.html", topics + "chkType-notes.html"}));
  for (const Control* control : controls) EXPECT_EQ(control->Whats_This_Help_ID(), 0) << control->Name();
}

TEST_F(Help_Test, The_Browser_Window_Comes_Back_In_The_Size_That_It_Had) {
  const struct {
    double height, width;
    Twips height_then, width_then;
  } cases[] = {{4999, 6000, 8400, 11400}, {5000, 6000, 5000, 6000}, {5000, 11400, 5000, 11400}};
  for (const auto& c : cases) {
    settings_.Save_Setting(setting::help_screen_height, c.height);
    settings_.Save_Setting(setting::help_screen_width, c.width);
    window_.mnuOnlineHelp.Click();
    EXPECT_EQ(browser_.frmHelpBrowser.Height(), c.height_then);
    EXPECT_EQ(browser_.frmHelpBrowser.Width(), c.width_then);
    EXPECT_EQ(browser_.WebBrowser1.Height(), c.height_then) << "the page fills the window";
    EXPECT_EQ(browser_.WebBrowser1.Width(), c.width_then);
    browser_.frmHelpBrowser.Set_Height(7000.5);
    browser_.frmHelpBrowser.Resize();
    EXPECT_EQ(browser_.WebBrowser1.Height(), 7000);
    browser_.frmHelpBrowser.Close();
    EXPECT_EQ(settings_.Get_Setting(setting::help_screen_height), "7000");
  }
}

TEST_F(Help_Test, A_Page_That_Does_Not_Come_Offers_The_Book_Once) {
  Put("run/A.Book.chm");
  help_.Initialize_Help();
  window_.mnuOnlineHelp.Click();
  EXPECT_EQ(pages_.back(), File_URL(environment_.program.Path) + "/tidyfoldhelp/index.html");
  WebBrowser& browser = browser_.WebBrowser1;
  box_.Expect("The page http://x/ could not be loaded.\r\nNobody answers.\r\n", Buttons::Yes_No, Answer::Yes,
              [&] { browser.NavigateError("http://x/y", ""); });
  browser.NavigateError("http://x/", "Nobody answers.");
  EXPECT_EQ(platform_.opened.size(), 1u);
}

}  // namespace
}  // namespace tidyfold
