// Help in the built window: What's This, the book, the browser window, About.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "desktop/page_server.h"
#include "desktop/window_fixture.h"

namespace tidyfold {
namespace {

class Help_Window : public Window {
 protected:
  void SetUp() override {
    Window::SetUp();
    if (!IsSkipped()) Make_Store(200);
  }
  void TearDown() override {
    Window::TearDown();
    unsetenv("TIDYFOLD_SITE");
  }

  void Close() {
    window_->Close_Window();
    EXPECT_EQ(window_->Program().Wait_For_End(), 0);
    window_.reset();
  }
  State Wait_For_Window(const std::string& name, const std::string& title) {
    return window_->Wait(name + " with the title " + title, [&](const State& state) {
      return state["beside"].contains(name) && state["beside"][name]["title"] == title &&
             state["keyboard"] == "other";
    })["beside"][name];
  }
  void Close_By_Escape(const std::string& name) {
    window_->Key_To_Other("Escape");
    window_->Wait(name + " to close", [&](const State& state) { return !state["beside"].contains(name); });
  }
  // Enabled or not.
  void Point_At(const std::string& control) {
    const State at = window_->Wait(control, [&](const State& state) {
      return state["widgets"].contains(control);
    })["widgets"][control]["rectangle"];
    const int x = at[0].get<int>() + at[2].get<int>() / 2, y = at[1].get<int>() + at[3].get<int>() / 2;
    window_->Xdotool({"mousemove", std::to_string(x), std::to_string(y), "click", "1"});
  }
  void Ask_Whats_This() {
    window_->Key("shift+F1");
    window_->Wait("the pointer that asks",
                  [](const State& state) { return state["pointer_asks"].get<bool>(); });
  }
};

TEST_F(Help_Window, Whats_This_Shows_The_Topic_Of_What_Is_Clicked_And_The_Click_Does_Nothing_Else) {
  Open();
  const State before = window_->Wait("the options", [](const State& state) {
    return state["widgets"].contains("chkMatchWord") && !state["widgets"]["chkMatchWord"]["enabled"];
  })["widgets"];
  const std::pair<const char*, const char*> cases[] = {{"chkTurbo", "Turbo"},
                                                       {"chkMatchWord", "Match Word"},
                                                       {"chkType(44)", "Type: Notes"},
                                                       {"trvFolders", "Folder tree"}};
  for (const auto& [control, topic] : cases) {
    Ask_Whats_This();
    Point_At(control);
    Wait_For_Window("frmHelpViewer", "Help: " + std::string(topic));
    Close_By_Escape("frmHelpViewer");
    window_->Wait("a window where nothing has happened",
                  [&](const State& state) { return !state["pointer_asks"] && state["widgets"] == before; });
  }

  Ask_Whats_This();
  window_->Xdotool({"key", "Escape"});
  window_->Wait("the usual pointer", [](const State& state) { return !state["pointer_asks"].get<bool>(); });
  window_->Tick_Option("chkTurbo");
  window_->Key("F1");
  Wait_For_Window("frmHelpViewer", "Help: Tidyfold Help");
  Close_By_Escape("frmHelpViewer");

  // An open What's This ends with the window.
  Ask_Whats_This();
  Close();
}

TEST_F(Help_Window, Pages_Have_A_Window_That_Keeps_Its_Size_And_A_Site_That_Is_Gone_Offers_The_Book) {
  if (!TIDYFOLD_HAS_WEB_VIEW) GTEST_SKIP() << "Built without the view of Web pages.";
  std::optional<Page_Server> server(TIDYFOLD_SITE_FOLDER);
  setenv("TIDYFOLD_SITE", server->Address().c_str(), 1);
  Open();
  window_->Key("ctrl+h");
  // The style sheet is requested when the page is shown.
  EXPECT_TRUE(server->Wait_For("/tidyfoldhelp/index.html"));
  EXPECT_TRUE(server->Wait_For("/tidyfoldhelp/style.css"));
  Wait_For_Window("frmHelpBrowser", "Tidyfold Help");
  window_->Xdotool({"search", "--onlyvisible", "--name", "^Tidyfold Help$", "windowsize", "840", "620"});
  const State size = window_->Wait("the new size, filled by the page", [](const State& state) {
    const State& browser = state["beside"]["frmHelpBrowser"];
    return browser["rectangle"][2] == 840 &&
           browser["widgets"]["WebBrowser1"]["rectangle"] == browser["rectangle"];
  })["beside"]["frmHelpBrowser"]["rectangle"];
  // The main window stays usable, and the browser window is reused.
  window_->Tick_Folder("Inbox");
  window_->Wait("the Inbox to be ticked", [](const State& state) {
    return std::any_of(state["tree"].begin(), state["tree"].end(), [](const State& node) {
      return node["checked"].get<bool>() && node["text"].get<std::string>().starts_with("Inbox");
    });
  });
  window_->Key("alt+h");
  window_->Xdotool({"key", "a"});
  const State shown = Wait_For_Window("frmAbout", "About Tidyfold")["widgets"];
  EXPECT_EQ(shown["lblHeading"]["label"], "Tidyfold");
  EXPECT_EQ(shown["txtVersionNumber"]["text"], TIDYFOLD_VERSION);
  EXPECT_TRUE(shown["txtLicences"]["text"].get<std::string>().starts_with("Libraries that Tidyfold uses"));
  window_->Xdotool({"key", "alt+h"});
  EXPECT_TRUE(server->Wait_For("/tidyfoldhelp/home.html"));
  window_->Wait("the home page in the same window", [&](const State& state) {
    const State& browser = state["beside"]["frmHelpBrowser"];
    return browser["title"] == "Tidyfold - Tidyfold Help" && browser["rectangle"][2] == size[2];
  });
  Close_By_Escape("frmHelpBrowser");
  Close_By_Escape("frmAbout");
  Close();

  // No server at the address, then one without the page.
  server.reset();
  for (const char* reason : {"", "The site answered with status 404."}) {
    if (*reason != '\0') {
      server.emplace(folder_);
      setenv("TIDYFOLD_SITE", server->Address().c_str(), 1);
    }
    Open();
    window_->Key("ctrl+h");
    const State then = window_->Wait_For_Box("/tidyfoldhelp/index.html could not be loaded.\r\n" +
                                             std::string(reason))["beside"]["frmHelpBrowser"]["rectangle"];
    EXPECT_EQ(then[2], size[2]);
    EXPECT_EQ(then[3], size[3]);
    window_->Answer("The help book holds the same topics. Open it?", "alt+y");
    Wait_For_Window("frmHelpViewer", "Help: Tidyfold Help");
    Close_By_Escape("frmHelpViewer");
    Close_By_Escape("frmHelpBrowser");
    Close();
  }
}

}  // namespace
}  // namespace tidyfold
