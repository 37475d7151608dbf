#include "app/window_fixture.h"

namespace tidyfold {

namespace {

const std::string shown = "ShowSelectedItems ShowUnselectedItems";

}  // namespace

TEST(Options, Turbo_And_Delete_Folders_Force_The_Others) {
  const std::string others =
      "SelectByRow CollapseFolders ConfirmFolders ConfirmItems SelectDate SelectSubject SelectType";
  Window_Fixture f;
  f.Load();
  f.Set(others);
  f.Set("Turbo");
  EXPECT_EQ(f.On(), "CollapseFolders " + shown + " Turbo PermanentDelete ConfirmFolders SelectUnread");
  f.Set(others);
  EXPECT_EQ(f.On(), "CollapseFolders " + shown +
                        " SelectByRow PermanentDelete ConfirmFolders ConfirmItems SelectUnread SelectDate "
                        "SelectSubject SelectType");
  f.Set("PermanentDelete SelectUnread", 0);
  f.Set("Turbo DeleteFolders");
  EXPECT_EQ(f.On(), "MarkSubFolders " + shown + " PermanentDelete ConfirmFolders DeleteFolders SelectUnread");
  f.Set("Turbo");
  EXPECT_EQ(f.On(), "MarkSubFolders " + shown + " Turbo PermanentDelete ConfirmFolders SelectUnread");
  f.window.mnuResetOptions.Click();
  EXPECT_EQ(f.On(), shown);
}

TEST(Options, Delete_Folders_Asks_And_Refuses) {
  const std::string one = "There is currently 1 marked folder that will be deleted.  Unmark it?";
  const std::string two = "There are currently 2 marked folders that will be deleted.  Unmark them?";
  const std::string no_default = "Cannot mark \"Delete Folders\" while default folders are selected.";
  const std::string no_orphan =
      "Cannot mark \"Delete Folders\" while there is any unmarked child folder of a marked parent folder.";
  const std::pair<std::vector<const char*>, Window_Fixture::Script> cases[] = {
      {{}, {}},
      {{"Projects/Alpha"}, {{one, No}}},
      {{"Projects/Alpha"}, {{one, Yes}}},
      {{"Projects", "Projects/Alpha"}, {{two, No}}},
      {{"Projects", "Inbox"}, {{two, Yes}}},
      {{"Projects", "Inbox"}, {{two, No}, {no_default, OK}}},
      {{""}, {{one, No}, {no_default, OK}}},
      {{"Projects"}, {{one, No}, {no_orphan, OK}}},
  };
  for (const auto& [marked, script] : cases) {
    Window_Fixture f;
    f.Folder("Projects/Alpha");
    f.Load();
    for (const char* path : marked) f.Tick(path);
    f.Expect(script);
    f.Set("DeleteFolders");
    f.box.Verify();
    const bool refused = script.size() == 2;
    EXPECT_EQ(f.box.Boxes().back().icon == Icon::Critical, refused);
    EXPECT_EQ(f.On(),
              refused ? shown : "MarkSubFolders " + shown + " PermanentDelete DeleteFolders SelectUnread");
    for (const char* path : marked) EXPECT_EQ(f.Checked(path), script.front().second == No) << path;
  }
  // What ran while the question was open may have switched the option off.
  Window_Fixture f;
  f.Load();
  f.Tick("Inbox");
  f.box.Expect("Unmark it?", Buttons::Yes_No, Yes, [&] { f.Set("DeleteFolders", 0); });
  f.Set("DeleteFolders");
  EXPECT_EQ(f.On(), shown);
}

TEST(Options, Permanent_Delete_Stays_While_Deleted_Items_Is_Marked_And_Takes_Picked_Rows_With_It) {
  Window_Fixture f;
  f.Add("Deleted Items", "a");
  f.Load();
  f.Set("PermanentDelete");
  f.Tick("Deleted Items");
  f.Expect({{"Cannot unckeck Permanent Delete box while \"Deleted Items\" is selected.", OK}});
  f.Set("PermanentDelete", 0);
  EXPECT_EQ(f.On(), shown + " PermanentDelete");
  f.Tick("Deleted Items", false);
  f.Set("SelectByRow");
  f.Pick(1);
  EXPECT_TRUE(f.window.cmdRun.Enabled());
  f.Set("PermanentDelete", 0);
  EXPECT_EQ(f.window.grdItems.Marked_Rows(), 0);
  EXPECT_FALSE(f.window.cmdRun.Enabled());
}

TEST(Options, Collapse_Folders_Opens_What_Holds_Marked_Items) {
  Window_Fixture f;
  f.Add("Projects/Alpha/Deep", "a");
  f.Folder("Empty/Below");
  f.Load();
  for (const char* path : {"Projects/Alpha/Deep", "Empty/Below"}) f.Tick(path);
  for (const char* path : {"Projects", "Empty"}) f.tree.Set_Expanded(f.Node(path), false);
  EXPECT_EQ(f.tree.Text(f.Node("Projects")), "Projects - (1)");
  f.Set("CollapseFolders");
  EXPECT_TRUE(f.tree.Expanded(f.Node("Projects")) && !f.tree.Expanded(f.Node("Empty")));
}

TEST(Options, Enable_What_Can_Be_Used) {
  Window_Fixture f;
  f.Add("Inbox", "a");
  f.Load();
  MainWindow& w = f.window;
  EXPECT_FALSE(w.cmdRun.Enabled() || w.dtpCutoffDate.Enabled() || w.txtSelectSubject.Enabled());
  f.Tick("Inbox");
  f.Set("SelectByRow");
  EXPECT_TRUE(w.cmdRun.Enabled()) << "the row was marked by the filters";
  f.Pick(1, 2);
  EXPECT_TRUE(!w.cmdRun.Enabled() && w.mnuUnmark.Enabled()) << "a folder is marked, but no row";
  EXPECT_FALSE(w.chkShowSelectedItems.Enabled() || w.chkConfirmFolders.Enabled());
  f.Pick(1);
  EXPECT_TRUE(w.cmdRun.Enabled());
  w.mnuRefreshCurrent.Click();
  EXPECT_FALSE(w.cmdRun.Enabled()) << "the picked row has gone";
  f.Set("SelectByRow", 0);
  f.Set("Turbo");
  EXPECT_FALSE(w.chkPermanentDelete.Enabled() || w.chkConfirmItems.Enabled() || w.chkSelectUnread.Enabled() ||
               w.chkSelectDate.Enabled() || w.chkSelectSubject.Enabled() || w.chkSelectType.Enabled());
  f.events.When([&] { return w.cmdRun.Caption() == "&Cancel"; },
                [&] {
                  for (const Control* control : w.controls)
                    EXPECT_EQ(control->Enabled(), control == &w.cmdRun);
                });
  f.box.Answer_Anything();
  w.cmdRun.Click();
  EXPECT_TRUE(w.chkTurbo.Enabled() && w.mnuRefresh.Enabled() && !w.cmdRun.Enabled());
  EXPECT_EQ(
      w.dtpCutoffDate.Tool_Tip_Text(),
      "Click drop down box to pick date or \r\nuse arrow keys to change date then press <Tab> or <Enter> "
      "to change filter.");
}

}  // namespace tidyfold
