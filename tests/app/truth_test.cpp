// What a person is told, or finds after a command, is true: one case for each way in which it once was not.
#include "app/window_fixture.h"
#include "errors/automation_error.h"

namespace tidyfold {

TEST(Truth, A_Run_That_Is_Not_Confirmed_Leaves_Everything_As_It_Was) {
  Window_Fixture f("folder Old");
  f.Add("Inbox", "a", 150);
  f.Add("Old", "b", 150);
  f.box.Answer_Anything();
  f.events.When([&] { return f.window.sbStatusBar.Panel_Text(2) == "100"; },
                [&] { f.window.mnuStopLoading.Click(); });
  f.app.Form_Load();
  f.Do("tick Inbox");
  const auto state = [&] {
    const StatusBar& bar = f.window.sbStatusBar;
    return std::tuple(f.Record(f.Node("Inbox")).CachedCount, bar.Gauge_Done(), bar.Gauge_Total(),
                      bar.Panel_Text(1), f.window.cmdRun.Caption(), f.grid.Rows(), f.Everything());
  };
  const auto before = state();
  for (const char* options : {"", "set PermanentDelete"}) {
    f.Do(options);
    f.box.Expect("identified for cleaning", Buttons::OK_Cancel, options[0] == 0 ? Answer::Cancel : OK);
    if (options[0] != 0) {
      f.box.Expect("Warning!", Buttons::OK_Cancel, OK);
      f.box.Expect("Permanently delete items", Buttons::Yes_No, No);
    }
    f.window.cmdRun.Click();
    EXPECT_EQ(state(), before) << options;
    EXPECT_FALSE(f.app.run.Began);
  }
}

TEST(Truth, A_Yield_That_Fails_In_The_Walk_Is_Told_And_Leaves_No_Mark) {
  Window_Fixture f("add Inbox/a; load; tick Inbox");
  f.events.When([&] { return f.tree.Text(f.Node("Inbox")).ends_with("<<<<"); },
                [] { throw Automation_Error(automation_error::call_failed, "The disk is full.", "store"); });
  f.box.Answer_Anything();
  f.window.cmdRun.Click();
  EXPECT_EQ(f.box.Count("The disk is full."), 1);
  EXPECT_EQ(f.box.Count("Not all items could be deleted"), 1);
  EXPECT_EQ(f.tree.Text(f.Node("Inbox")), "Inbox - (1)");
}

TEST(Truth, A_Yield_That_Fails_While_The_Tree_Is_Built_Leaves_Refresh_Alive) {
  Window_Fixture f("add Inbox/a; load");
  f.box.Answer_Anything();
  f.events.At_Yield(f.events.Yields() + 1, [] {
    throw Automation_Error(automation_error::call_failed, "The disk is full.", "store");
  });
  f.window.mnuRefresh.Click();
  EXPECT_EQ(f.box.Count("The disk is full."), 1);
  EXPECT_TRUE(f.app.phase.Is_Idle());
  f.window.mnuRefresh.Click();
  f.Expect_Agreement();
  EXPECT_TRUE(f.window.chkTurbo.Enabled());
}

TEST(Truth, The_First_Item_May_Fail_While_Its_Folder_Is_Read_Again) {
  Window_Fixture f("add Inbox/a; add Inbox/b");
  f.plan.Fail_Always("MAPIFolder.GetTable", {1, "no table", "store"});
  f.plan.Fail_Call("Item.Subject", 1, {1, "it fails", "store"});
  f.box.Answer_Anything();
  f.box.Expect("it fails", Buttons::OK_Only, OK, [&] { f.window.mnuRefreshCurrent.Click(); });
  f.app.Form_Load();
  f.Expect_Agreement();
}

TEST(Truth, Dangerous_Options_Serve_One_Run) {
  for (const std::string option : {"PermanentDelete", "Turbo", "DeleteFolders"}) {
    Window_Fixture f("add Projects/a; add Deleted Items/b; load; set ShowAllFolders");
    f.box.Answer_Anything();
    f.Do("set " + option + "; tick Projects" + (option == "PermanentDelete" ? "; tick Deleted Items" : ""));
    f.window.cmdRun.Click();
    EXPECT_EQ(f.On().find("PermanentDelete"), std::string::npos) << f.On();
    EXPECT_EQ(f.On().find(option), std::string::npos) << f.On();
    EXPECT_FALSE(f.Checked("Deleted Items")) << "without Permanent Delete it may not be marked";
    EXPECT_EQ(f.box.Count("Cannot unckeck"), 0);
  }
}

TEST(Truth, What_Has_Changed_Since_It_Was_Shown_Is_Kept_And_Named) {
  using Change = std::function<void(Window_Fixture&, const std::string&)>;
  const auto change = [](auto&& edit) -> Change {
    return [edit](Window_Fixture& f, const std::string& id) { f.outlook.Store(1).Change_Item(id, edit); };
  };
  const std::pair<const char*, Change> changes[] = {
      {"unread", change([](New_Item& item) { item.unread = true; })},
      {"subject", change([](New_Item& item) { item.subject = "other"; })},
      {"date", change([](New_Item& item) { item.received += 1; })},
      {"class", change([](New_Item& item) { item.item_class = item_class::note; })},
      {"elsewhere",
       [](Window_Fixture& f, const std::string& id) { f.outlook.Store(1).Move_Item(id, *f.Folder("Old")); }},
      {"gone", [](Window_Fixture& f, const std::string&) { f.Folder("Inbox")->Items()->Remove(1); }}};
  for (const auto& [name, act] : changes) {
    SCOPED_TRACE(name);
    Window_Fixture f("add Inbox/a; add Inbox/b; folder Old; load; tick Inbox");
    act(f, f.Record(f.Node("Inbox")).Cached(1).EntryID);
    f.Clean({{"2 items in 1 folder identified for cleaning.", OK},
             {"1 item was kept because it has changed since it was shown:\r\n\r\nInbox: a", OK},
             {"1 item was moved to the \"Deleted Items\" folder.", OK}});
    EXPECT_EQ(f.app.run.Changed.size(), 1U);
  }
}

TEST(Truth, Tree_And_List_Follow_Names_Ticks_And_Types) {
  Window_Fixture f("folder Projects; folder Projects (old); add Projects/Deep/a; load");
  EXPECT_EQ(f.tree.Next(f.Node("Projects")), f.Node("Projects (old)"));
  f.Do("set MarkSubFolders; tick Projects; untick Projects/Deep; click Inbox; click Projects");
  EXPECT_FALSE(f.Checked("Projects/Deep")) << "a click on a name ticks nothing";
  f.Expect({{"Cannot marked \"Deleted Items\" folder if Permanent Delete box is unchecked.", OK}});
  f.Do("tick Deleted Items");
  EXPECT_EQ(f.tree.Selected_Item(), f.Node("Projects")) << "the highlight is where the list is";
  f.Do("set ShowAllFolders; click Calendar; unset ShowAllFolders");
  EXPECT_EQ(f.grid.Header(3), "Subject") << "the columns of appointments";
  f.Do("click Projects/Deep; set SelectByRow; row 1");
  f.Expect({{"1 item that was picked is let go, as the list no longer shows it.", OK}});
  f.Do("click Inbox");
  f.box.Verify();
}

}  // namespace tidyfold
