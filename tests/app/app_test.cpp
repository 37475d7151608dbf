#include "app/window_fixture.h"

namespace tidyfold {

TEST(App, Ends_At_Once_Without_Outlook_Or_Folders) {
  Window_Fixture unreachable, empty("", 0);
  for (const char* member : {"Automation.GetObject", "Automation.CreateObject"})
    unreachable.plan.Fail_Always(member, {1, "it is not installed", "store"});
  unreachable.Expect({{"Unable to initialize Outlook.  Please try again.", OK}});
  empty.outlook.Add_Store("Empty", Memory_Outlook::Default_Folders::None);
  empty.Expect({{"No folders were loaded.", OK}});
  for (Window_Fixture* f : {&unreachable, &empty}) {
    f->app.Form_Load();
    EXPECT_FALSE(f->window.frmRemoveItems.Loaded());
    EXPECT_FALSE(f->window.frmMessageBox.Loaded());
  }
  EXPECT_EQ(empty.box.Boxes().back().icon, Icon::Critical);
}

TEST(App, Panes_Are_Never_Narrower_Than_Nothing) {
  Window_Fixture f("load");
  EXPECT_EQ(f.window.dtpCutoffDate.Value(), f.clock.today);
  f.window.picSlider2.Set_Width(-20000);
  f.window.picSlider.MouseUp(0);
  EXPECT_EQ(f.window.lblCurrentFolder.Width(), 0);
}

TEST(App, Opens_As_It_Was_Left_With_Options_That_Delete_At_Their_Safe_Values) {
  const auto look = [](Window_Fixture& f) {
    std::string text = f.On() + " | " + std::to_string(std::lround(f.window.trvFolders.Width())) + " |";
    for (int column = 2; column < f.grid.Cols(); ++column) text += " " + f.grid.Header(column);
    return text + " | " + std::to_string(std::lround(f.grid.Column_Width(3))) + " | sorted by " +
           f.grid.Header(f.grid.Sort_Column()) + (f.grid.Sorted_Ascending() ? " up" : " down") +
           (f.window.mnuPreview.Checked() ? " | preview" : "");
  };
  Window_Fixture first("add Inbox/a; load");
  const std::string at_first = look(first);
  first.window.picSlider.Set_Left(4500);
  first.window.picSlider.MouseUp(0);
  first.Do(
      "tick Inbox; set ShowAllFolders PermanentDelete SelectUnread ConfirmItems; unset ShowUnselectedItems");
  first.window.mnuShowSize.Click();
  first.grid.Set_Column_Width(3, 3333);
  first.grid.Column_Sized(3);
  first.window.mnuSortBy[3].Click();
  first.window.mnuPreview.Click();
  first.window.frmRemoveItems.Close();

  Window_Fixture second("add Inbox/a");
  std::filesystem::copy_file(first.state_folder / "settings.json", second.state_folder / "settings.json");
  second.Do("load; tick Inbox");
  EXPECT_EQ(look(second),
            "ShowAllFolders ShowSelectedItems | 4380 | Folder Type Sender Subject Date Goes | 3333 | "
            "sorted by Subject up | preview");
  second.window.mnuResetWindow.Click();
  second.window.mnuResetOptions.Click();
  EXPECT_EQ(look(second), at_first);
}

TEST(App, Names_The_Window_And_Tells_Stores_Of_One_Name_Apart) {
  Window_Fixture one("load");
  EXPECT_EQ(one.window.frmRemoveItems.Caption(), one.Record(1).FolderName + " - Tidyfold");
  Window_Fixture two("add 2:Inbox/a; load", 2);
  EXPECT_TRUE(two.window.frmRemoveItems.Caption().ends_with(", Store 2 - Tidyfold"));
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
    EXPECT_FALSE(f.window.mnuStopLoading.Enabled());
    EXPECT_LE(f.window.sbStatusBar.Gauge_Total(), 0);
    f.window.mnuRefreshCurrent.Click();
    EXPECT_EQ(f.grid.Rows(), 251);
    f.Expect_Agreement();
  }
}

// The window may say that something failed. It goes on, deletes nothing, and a Refresh brings it right.
TEST(App, Outlives_What_Happens_To_The_Store_Between_Two_Clicks) {
  using Act = std::function<void(Window_Fixture&)>;
  const std::pair<const char*, Act> moments[] = {
      {"nothing", [](Window_Fixture&) {}},
      {"the folder is gone",
       [](Window_Fixture& f) {
         const Folders_Ptr folders = f.Folder("")->Folders();
         for (std::int32_t i = folders->Count(); i >= 1; --i)
           if (folders->Item(i)->Name() == "Old") folders->Remove(i);
       }},
      {"its items are gone",
       [](Window_Fixture& f) {
         while (f.Folder("Old")->Items()->Count() > 1) f.Folder("Old")->Items()->Remove(1);
       }},
      {"the store is closed", [](Window_Fixture& f) {
         f.plan.Fail_Where([](const Store_Call&) { return true; }, {1, "It is closed", "store"});
       }}};
  const std::string steps[] = {"row 2",
                               "rows-to 3",
                               "turn-row 1",
                               "click Inbox",
                               "set ShowAllFolders",
                               "set SelectByRow",
                               "set SelectSubject",
                               "set DeleteFolders",
                               "unset ShowUnselectedItems"};
  MenuItem MainWindow::*const entries[] = {
      &MainWindow::mnuOpenItem,   &MainWindow::mnuRefreshCurrent, &MainWindow::mnuRefresh,
      &MainWindow::mnuMarkBranch, &MainWindow::mnuMark,           &MainWindow::mnuUnmarkFolder,
      &MainWindow::mnuUnmark,     &MainWindow::mnuStopLoading,    &MainWindow::mnuSelectAllRows};
  std::vector<Act> commands;
  for (const auto entry : entries)
    commands.push_back([entry](Window_Fixture& f) { (f.window.*entry).Click(); });
  for (const std::string& step : steps) commands.push_back([step](Window_Fixture& f) { f.Do(step); });
  for (const auto& [name, moment] : moments)
    for (const Act& command : commands)
      for (const std::string before : {"", "tick Old", "set SelectByRow; row 150", "loading"}) {
        SCOPED_TRACE(std::string(name) + ", command " + std::to_string(&command - commands.data()) + ", " +
                     before);
        Window_Fixture f("folder Old/Deep");
        f.Add("Old", "a", 250);
        f.Do("load; click Old; " + (before == "loading" ? "" : before));
        f.grid.Set_Row(f.grid.Rows() - 1);
        f.box.Answer_Anything();
        Window_Fixture::Contents left;
        const auto act = [&, &then = moment] {
          then(f);
          left = f.Everything();
          command(f);
        };
        if (before == "loading") {
          f.events.When([&] { return f.grid.Rows() > 100 && f.grid.Rows() < 200; }, act);
          f.window.mnuRefreshCurrent.Click();
        } else {
          act();
        }
        f.plan.Forget_Faults();
        // A Refresh that finds no folder at all is the end.
        if (f.box.Count("No folders were loaded.") > 0) continue;
        EXPECT_TRUE(f.window.frmRemoveItems.Loaded());
        EXPECT_TRUE(f.grid.Redraw());
        f.window.mnuResetOptions.Click();
        f.window.mnuRefresh.Click();
        f.Expect_Agreement();
        EXPECT_EQ(f.Everything(), left);
        if (HasFailure()) return;
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
    std::map<std::string, int> reads;
    f.plan.on_call = [&](const Store_Call& call) {
      reads[call.entry_id] += call.member == "Item.Subject" ? 1 : 0;
    };
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
    EXPECT_LE(std::count_if(inbox.begin(), inbox.end(), [&](auto& id) { return reads[id] > 1; }), 3);
    f.Expect_Agreement();
  }
}

}  // namespace tidyfold
