#include "app/window_fixture.h"

namespace tidyfold {

TEST(App, Ends_At_Once_Without_Outlook_Or_Folders) {
  Window_Fixture unreachable;
  unreachable.outlook.running = unreachable.outlook.startable = false;
  unreachable.Expect({{"Unable to initialize Outlook.  Please try again.", OK}});
  unreachable.app.Form_Load();
  Window_Fixture empty(0);
  empty.outlook.Add_Store("Empty", Memory_Outlook::Default_Folders::None);
  empty.Expect({{"No folders were loaded.", OK}});
  empty.app.Form_Load();
  EXPECT_EQ(empty.box.Boxes().back().icon, Icon::Critical);
  for (const Window_Fixture* f : {&unreachable, &empty})
    EXPECT_FALSE(f->window.frmRemoveItems.Loaded() || f->window.frmMessageBox.Loaded());
}

TEST(App, Start_Up_Fits_The_Designed_Positions_To_One_Another) {
  Window_Fixture f;
  f.Load();
  const MainWindow& w = f.window;
  EXPECT_EQ(w.lblCurrentFolder.Left(), w.grdItems.Left() + 75);
  EXPECT_EQ(std::pair(w.linOptions1.X1(), w.linOptions2.X2()), std::pair(75.0F, w.frmOptions.Width() - 75));
  EXPECT_EQ(w.frmOptions.Top(), MainWindow().frmOptions.Top() - 85);
  EXPECT_EQ(std::pair(w.cmdRun.Left(), w.cmdRun.Width()),
            std::pair(w.frmOptions.Left(), w.frmOptions.Width()));
  EXPECT_EQ(w.txtSelectSubject.Width(), w.frmOptions.Width() - w.txtSelectSubject.Left() - 100);
  EXPECT_EQ(w.dtpCutoffDate.Value(), f.clock.today);
  EXPECT_FALSE(w.cmddebug.Visible() || w.frmMessageBox.Visible());
  f.window.picSlider2.Set_Width(-20000);
  f.window.picSlider.MouseUp(0);
  EXPECT_EQ(w.lblCurrentFolder.Width(), 0) << "never negative";
}

TEST(App, Quit_Asks_And_A_Refresh_While_Loading_Starts_Over) {
  for (int yield = 1, refreshed = 1; refreshed == 1; ++yield) {
    SCOPED_TRACE(yield);
    Window_Fixture f;
    f.Add_Many("Inbox", 3);
    refreshed = 0;
    f.Expect({{"Quit Tidyfold?", No}});
    f.events.At_Yield(1, [&] { f.window.mnuQuit.Click(); });
    f.events.When([&] { return f.events.Yields() == yield; },
                  [&] {
                    refreshed = 1;
                    f.window.mnuRefresh.Click();
                  });
    f.Load();  // says once that everything is loaded
    f.events.Forget_Waiting();
    EXPECT_EQ(f.window.trvFolders.Count(), 11);
    f.Expect_Agreement();
  }
}

// The run works on live items and loading goes on where it was. Only the item in front of a break is looked at
// again, to see that the folder is as it was.
TEST(App, Clean_While_Loading_Reads_Nothing_Twice) {
  for (int yield = 4; yield <= 30; ++yield) {
    SCOPED_TRACE(yield);
    Window_Fixture f;
    std::vector<std::string> inbox;
    for (int number = 0; number < 30; ++number) inbox.push_back(f.Add("Inbox", "stays"));
    for (int number = 0; number < 3; ++number) f.Add("Projects", "goes");
    f.events.At_Yield(yield, [&] {
      f.Tick("Projects");
      const std::string warning =
          "Warning!  Not all marked folders have be fully loaded.\r\nThese folders may be cleaned but not "
          "all items to be\r\ncleaned have been displayed or counted.\r\n\r\nPress OK to continue with "
          "cleaning.";
      const std::string count = "0 items in 1 folder identified for cleaning.";
      f.Expect({{count, OK}});
      f.box.Expect(Exact(warning), Buttons::OK_Cancel, Cancel);
      f.window.cmdRun.Click();
      EXPECT_EQ(f.Folder("Projects")->Items()->Count(), 3);
      f.Expect({{count, OK}});
      f.box.Expect(Exact(warning), Buttons::OK_Cancel, OK);
      f.Expect({{" 3 items were moved to the \"Deleted Items\" folder.", OK}});
      f.window.cmdRun.Click();
      f.Expect({{"All Folders Loaded", OK}});
    });
    f.app.Form_Load();
    int twice = 0;
    for (const std::string& id : inbox) twice += f.outlook.Store(1).Reads(id) > 1 ? 1 : 0;
    EXPECT_LE(twice, 2);
    f.Expect_Agreement();
  }
}

TEST(App, Commands_In_The_Report_Of_A_Failed_Load) {
  using Command = std::function<void(MainWindow&)>;
  for (const Command& command : {Command([](MainWindow& w) { w.cmdRun.Click(); }),
                                 Command([](MainWindow& w) { w.mnuRefresh.Click(); }),
                                 Command([](MainWindow& w) { w.mnuRefreshCurrent.Click(); }),
                                 Command([](MainWindow& w) { w.frmRemoveItems.Close(); })}) {
    Window_Fixture f;
    f.Add_Many("Inbox", 150);
    const auto before = f.Everything();
    f.plan.Fail_Call("Item.Subject", 120, {1, "unreadable", "store"});
    f.box.Answer_Anything();
    f.box.on_box = [&](int number) {
      if (number != 1) return;
      f.Set("SelectType Type");
      f.Tick("Inbox");
      command(f.window);
    };
    f.app.Form_Load();
    if (!f.window.frmRemoveItems.Loaded()) continue;
    f.window.mnuRefresh.Click();
    f.Expect_Agreement();
    EXPECT_EQ(f.Everything().size(), before.size());
  }
}

}  // namespace tidyfold
