#include "app/window_fixture.h"

namespace tidyfold {

TEST(App, Ends_At_Once_Without_Outlook_Or_Folders) {
  Window_Fixture unreachable, empty("", 0);
  unreachable.outlook.running = unreachable.outlook.startable = false;
  unreachable.Expect({{"Unable to initialize Outlook.  Please try again.", OK}});
  empty.outlook.Add_Store("Empty", Memory_Outlook::Default_Folders::None);
  empty.Expect({{"No folders were loaded.", OK}});
  for (Window_Fixture* f : {&unreachable, &empty}) {
    f->app.Form_Load();
    EXPECT_FALSE(f->window.frmRemoveItems.Loaded() || f->window.frmMessageBox.Loaded());
  }
  EXPECT_EQ(empty.box.Boxes().back().icon, Icon::Critical);
}

TEST(App, Start_Up_Fits_The_Designed_Positions_To_One_Another) {
  Window_Fixture f("load");
  MainWindow& w = f.window;
  EXPECT_EQ(w.linOptions2.X2(), w.frmOptions.Width() - 75);
  EXPECT_EQ(w.frmOptions.Top(), MainWindow().frmOptions.Top() - 85);
  EXPECT_EQ(w.cmdRun.Width(), w.frmOptions.Width());
  EXPECT_EQ(w.txtSelectSubject.Width(), w.frmOptions.Width() - w.txtSelectSubject.Left() - 100);
  EXPECT_EQ(w.dtpCutoffDate.Value(), f.clock.today);
  w.picSlider2.Set_Width(-20000);
  w.picSlider.MouseUp(0);
  EXPECT_EQ(w.lblCurrentFolder.Width(), 0) << "never negative";
}

TEST(App, Quit_Asks_And_A_Refresh_While_Loading_Starts_Over) {
  for (int yield = 1, refreshed = 1; refreshed == 1; ++yield) {
    SCOPED_TRACE(yield);
    Window_Fixture f("add Inbox/a; add Inbox/b");
    refreshed = 0;
    f.Expect({{"Quit Tidyfold?", No}});
    f.events.At_Yield(1, [&] { f.window.mnuQuit.Click(); });
    f.events.When([&] { return f.events.Yields() == yield; },
                  [&] {
                    refreshed = 1;
                    f.window.mnuRefresh.Click();
                  });
    f.Do("load");  // says once that everything is loaded
    f.events.Forget_Waiting();
    f.Expect_Agreement();
  }
}

TEST(App, Stop_Loading_Keeps_What_Was_Read) {
  for (const Answer answer : {No, Yes}) {
    Window_Fixture f;
    f.Add("Inbox", "a", 250);
    f.events.When([&] { return f.grid.Rows() > 100; },
                  [&] {
                    f.box.Expect("Stop loading items?", Buttons::Yes_No, answer);
                    f.window.mnuStopLoading.Click();
                    if (answer == No) f.Expect({{"All Folders Loaded", OK}});
                  });
    f.app.Form_Load();
    EXPECT_EQ(f.grid.Rows() == 251, answer == No);
    EXPECT_FALSE(f.window.mnuStopLoading.Enabled() || f.window.sbStatusBar.Gauge_Total() > 0);
    f.window.mnuRefreshCurrent.Click();
    EXPECT_EQ(f.grid.Rows(), 251);
    f.Expect_Agreement();
  }
}

// The run works on live items and loading goes on where it was. Only the item in front of a break and
// the folder's last one are looked at again, to see that the folder is as it was.
TEST(App, Clean_While_Loading_Reads_Nothing_Twice) {
  const std::string count = "0 items in 1 folder identified for cleaning.";
  const Expected_Text warning = Exact(
      "Warning!  Not all marked folders have be fully loaded.\r\nThese folders may be cleaned but not all "
      "items to be\r\ncleaned have been displayed or counted.\r\n\r\nPress OK to continue with cleaning.");
  for (int yield = 4; yield <= 30; ++yield) {
    SCOPED_TRACE(yield);
    Window_Fixture f("add Old/goes; add Old/unread");
    std::vector<std::string> inbox;
    while (inbox.size() < 30) inbox.push_back(f.Add("Inbox", "stays").substr(7));
    f.events.At_Yield(yield, [&] {
      f.Do("tick Old");
      f.Expect({{count, OK}});
      f.box.Expect(warning, Buttons::OK_Cancel, Cancel);
      f.window.cmdRun.Click();
      EXPECT_EQ(f.Folder("Old")->Items()->Count(), 2);
      f.Expect({{count, OK}});
      f.box.Expect(warning, Buttons::OK_Cancel, OK);
      f.Expect({{"1 item was moved to the \"Deleted Items\" folder.", OK}});
      f.window.cmdRun.Click();
      f.Expect({{"All Folders Loaded", OK}});
    });
    f.app.Form_Load();
    EXPECT_LE(
        std::count_if(inbox.begin(), inbox.end(), [&](auto& id) { return f.outlook.Store(1).Reads(id) > 1; }),
        3);
    f.Expect_Agreement();
  }
}

}  // namespace tidyfold
