#include "app/window_fixture.h"

namespace tidyfold {

namespace {

const std::string no_default = "Cannot mark a default folder while \" Delete Folders\" is marked.";
const std::string no_root = "Cannot select a root folder while \" Delete Folders\" is marked.";
const std::string no_wastebasket =
    "Cannot marked \"Deleted Items\" folder if Permanent Delete box is unchecked.";
const std::string with_parent =
    "Cannot unmark a folder while its parent folder is marked and \"Delete Folders\" is also marked.";
const std::string no_holder =
    "Cannot mark a folder that holds a protected folder while \"Delete Folders\" is marked.";
const std::string shown = "ShowSelectedItems ShowUnselectedItems";

struct Rule {
  std::size_t stores;
  const char *before, *verb, *path;
  std::string message;  // of the refusal
  bool after;
};

const Rule rules[] = {
    {2, "set DeleteFolders", "tick", "OUTLOOK", "", true},
    {1, "set DeleteFolders", "tick", "Inbox", no_default, false},
    {1, "set DeleteFolders", "tick", "Projects/Notes", no_default, false},
    {1, "set DeleteFolders", "tick", "Deleted Items", no_default, false},
    {1, "set DeleteFolders", "tick", "", no_root, false},
    {2, "set DeleteFolders", "tick", "", no_root, false},
    {1, "", "tick", "Deleted Items", no_wastebasket, false},
    {1, "", "tick", "Projects/Deleted Items", no_wastebasket, false},
    {1, "set PermanentDelete", "tick", "Deleted Items", "", true},
    {1, "set DeleteFolders; tick Projects", "untick", "Projects/Alpha", with_parent, true},
    {1, "set DeleteFolders; tick Projects", "click", "Projects/Notes", "", false},
    {1, "set DeleteFolders; tick Projects/Alpha", "untick", "Projects/Alpha", "", false},
    {1, "tick Projects/Alpha", "untick", "Projects/Alpha", "", false},
    {1, "protect Projects/Alpha; set DeleteFolders", "tick", "Projects", no_holder, false},
    {1, "protect Projects/Alpha", "tick", "Projects", "", true},
    {1, "protect Projects", "tick", "Projects/Alpha", "", false},
    {1, "protect Projects; protect Projects", "tick", "Projects/Alpha", "", true},
    {1, "protect Projects; click Inbox; set MarkSubFolders; tick ", "untick", "Projects/Alpha", "", false},
    {1, "tick Projects/Alpha; protect Projects", "click", "Projects/Alpha", "", false},
    {1, "set DeleteFolders; tick Projects/Alpha; protect Projects/Alpha", "untick", "Projects/Alpha", "",
     false},
    {1, "protect Deleted Items; set PermanentDelete", "tick", "Deleted Items", "", false},
};

}  // namespace

TEST(Marking, Rules_Allow_Or_Refuse_And_A_Refusal_Changes_Nothing) {
  for (const Rule& rule : rules) {
    SCOPED_TRACE(&rule - rules);
    Window_Fixture f("folder Projects/Alpha; folder Projects/Notes; folder Projects/Deleted Items; load",
                     rule.stores);
    f.Do(rule.before);
    const auto state = [&] {
      return std::tuple(f.window.lblCurrentFolder.Caption(), f.grid.Row_Version(), f.window.cmdRun.Enabled());
    };
    const auto before = state();
    if (!rule.message.empty()) f.Expect({{rule.message, OK}});
    if ((&rule - rules) % 2 == 0) f.tree.MouseUp = f.tree.KeyUp;  // a key is a click
    f.Do(rule.verb + std::string(" ") + rule.path);
    f.box.Verify();
    EXPECT_EQ(f.Checked(rule.path), rule.after);
    EXPECT_TRUE(rule.message.empty() || f.box.Boxes().back().icon == Icon::Critical);
    EXPECT_TRUE(rule.message.empty() || state() == before);
  }
}

TEST(Marking, A_Branch_Takes_The_Mark_Where_It_May_And_Unmark_All_Takes_It_Away) {
  for (const bool delete_folders : {false, true}) {
    Window_Fixture f("add Projects/Alpha/Deep/a; folder Deleted Items/Apart; load; set ShowAllFolders", 2);
    f.Do(delete_folders ? "set DeleteFolders; click OUTLOOK" : "click OUTLOOK; tick OUTLOOK");
    f.window.mnuMarkBranch.Click();
    for (const std::string path :
         {"", "Inbox", "Deleted Items", "Deleted Items/Apart", "Projects/Alpha/Deep"}) {
      const bool may = delete_folders ? path.find('/') != std::string::npos : path != "Deleted Items";
      EXPECT_EQ(f.Checked(path), may) << path;
      EXPECT_EQ(f.tree.Bold(f.Node(path)), may) << path;
    }
    EXPECT_TRUE(f.tree.Expanded(f.Node("Projects/Alpha")));
    EXPECT_EQ(f.grid.Rows(), 2) << "the deep item shows once";
    f.Do("unset DeleteFolders; untick OUTLOOK");
    EXPECT_TRUE(f.Checked("Projects/Alpha")) << "unticking is for one node";
    EXPECT_TRUE(f.window.cmdRun.Enabled());
    f.window.mnuUnmark.Click();
    EXPECT_FALSE(f.window.cmdRun.Enabled());
    EXPECT_FALSE(f.Checked("Projects/Alpha"));
    EXPECT_LE(f.grid.Rows(), 1);
  }
}

TEST(Marking, Protection_Is_Shown_Explained_And_Takes_Ticks_And_Picks_Away) {
  Window_Fixture f("add Old/Alpha/a; add Old/b; add Inbox/c; load; set ShowAllFolders");
  f.Do("tick Old; tick Old/Alpha; tick Inbox; set SelectByRow");
  f.window.mnuSelectAllRows.Click();
  EXPECT_EQ(f.grid.Marked_Rows(), 3);
  f.Do("protect Old");
  EXPECT_EQ(f.grid.Marked_Rows(), 1);
  EXPECT_EQ(f.grid.Rows(), 2) << "the others lie in no ticked folder";
  EXPECT_FALSE(f.Checked("Old") || f.Checked("Old/Alpha"));
  EXPECT_EQ(f.tree.Lock(f.Node("Old")), Node_Lock::Own);
  EXPECT_EQ(f.tree.Lock(f.Node("Old/Alpha")), Node_Lock::From_Above);
  EXPECT_EQ(f.tree.Lock(f.Node("Inbox")), Node_Lock::None);
  const std::string own = "\"Old\" is protected. Protect Folder in its menu takes the lock off.",
                    above = "\"Alpha\" lies below \"Old\", which is protected.";
  EXPECT_EQ(f.tree.Node_Tip(f.Node("Old/Alpha")), above);
  const auto said = [&] { return f.window.sbStatusBar.Panel_Text(1); };
  EXPECT_EQ(said(), own);
  f.Expect({{"1 item that was picked is let go, as the list no longer shows it.", OK}});
  f.Do("unset ShowAllFolders; click Inbox");
  EXPECT_EQ(said(), "");
  f.Do("tick Old/Alpha");
  EXPECT_EQ(said(), above);
  EXPECT_EQ(f.tree.Selected_Item(), f.Node("Inbox")) << "nothing but the words has changed";
  f.Do("click Old; rows-to 1");
  EXPECT_EQ(f.grid.Marked_Rows(), 0);
  EXPECT_EQ(said(), own);
  // However a tick or a pick may have come about, no plan takes it.
  f.tree.Set_Checked(f.Node("Old"), true), f.grid.Set_Mark(1, true);
  EXPECT_TRUE(f.app.planner.Plan_Run().stops.empty());
  f.grid.Set_Mark(1, false), f.Do("unset SelectByRow");
  EXPECT_TRUE(f.app.planner.Plan_Run().stops.empty());
  f.tree.Set_Checked(f.Node("Old"), false);
  const MainWindow& w = f.window;
  EXPECT_TRUE(w.mnuProtect.Checked() && !w.mnuMark.Enabled() && !w.mnuMarkBranch.Enabled());
  f.Do("click Old/Alpha");
  EXPECT_TRUE(w.mnuProtect.Enabled() && !w.mnuProtect.Checked());
  f.Do("protect Old");
  EXPECT_EQ(f.tree.Lock(f.Node("Old/Alpha")), Node_Lock::None);
  EXPECT_EQ(said() + f.tree.Node_Tip(f.Node("Old")), "");
  EXPECT_TRUE(w.mnuMark.Enabled());
  f.protection.can_change = false;
  f.Expect({{"All Folders Loaded", OK}});
  f.window.mnuRefresh.Click();
  f.Do("click Old");
  EXPECT_FALSE(w.mnuProtect.Enabled()) << "the store is open for reading only";
}

TEST(Marking, Moving_On_Unmarks_The_Folder_That_Was_Shown_For_Its_Rows) {
  for (const std::string options : {"", "SelectByRow", "ShowAllFolders", "ShowAllFolders SelectByRow"}) {
    Window_Fixture f("load; tick Inbox; set " + options + "; click Outbox");
    EXPECT_EQ(f.Checked("Inbox"), options != "SelectByRow") << options;
  }
}

TEST(Options, Turbo_And_Delete_Folders_Force_The_Others) {
  const std::string others =
      "SelectByRow CollapseFolders ConfirmFolders ConfirmItems SelectDate SelectSubject SelectType";
  Window_Fixture f("load; set " + others + "; set Turbo");
  EXPECT_EQ(f.On(),
            "CollapseFolders " + shown + " Turbo PermanentDelete ConfirmFolders SelectUnread SelectFlagged");
  f.Do("set " + others);
  EXPECT_EQ(f.On().find("Turbo"), std::string::npos) << "rows are not picked for Turbo";
  f.Do("unset PermanentDelete SelectUnread SelectFlagged; set Turbo DeleteFolders");
  EXPECT_EQ(f.On(), "MarkSubFolders " + shown +
                        " PermanentDelete ConfirmFolders DeleteFolders SelectUnread SelectFlagged");
  f.Do("set Turbo");
  EXPECT_EQ(f.On(),
            "MarkSubFolders " + shown + " Turbo PermanentDelete ConfirmFolders SelectUnread SelectFlagged");
  f.Do("set DeleteFolders; set SelectByRow");
  EXPECT_EQ(f.On(), "MarkSubFolders " + shown +
                        " SelectByRow PermanentDelete ConfirmFolders SelectUnread SelectFlagged");
  f.window.mnuResetOptions.Click();
  EXPECT_EQ(f.On(), shown);
}

TEST(Options, Delete_Folders_Asks_And_Refuses) {
  const std::string one = "There is currently 1 marked folder that will be deleted.  Unmark it?";
  const std::string two = "There are currently 2 marked folders that will be deleted.  Unmark them?";
  const std::string defaults = "Cannot mark \"Delete Folders\" while default folders are selected.";
  const std::string holder = "Cannot mark \"Delete Folders\" while a marked folder holds a protected folder.";
  const std::string orphans =
      "Cannot mark \"Delete Folders\" while there is any unmarked child folder of a marked parent folder.";
  const std::pair<std::string, Window_Fixture::Script> cases[] = {
      {"tick Projects/Alpha", {{one, No}}},
      {"tick Projects/Alpha", {{one, Yes}}},
      {"tick Projects; tick Projects/Alpha", {{two, No}}},
      {"tick Projects; tick Inbox", {{two, Yes}}},
      {"tick Projects/Alpha; tick Inbox", {{two, No}, {defaults, OK}}},
      {"tick ", {{one, No}, {defaults, OK}}},
      {"tick Projects", {{one, No}, {orphans, OK}}},
      {"protect Projects/Alpha; tick Projects", {{one, No}, {holder, OK}}},
  };
  for (const auto& [marks, script] : cases) {
    Window_Fixture f("folder Projects/Alpha; load; " + marks);
    f.Expect(script);
    f.Do("set DeleteFolders");
    f.box.Verify();
    const bool refused = script.size() == 2, kept = script.front().second == No;
    EXPECT_EQ(f.box.Boxes().back().icon == Icon::Critical, refused);
    EXPECT_EQ(f.On() != shown, !refused);
    EXPECT_EQ(f.window.mnuUnmark.Enabled(), kept);
  }
  // What ran while the question was open may have switched the option off.
  Window_Fixture f("load; tick Inbox");
  f.box.Expect("Unmark it?", Buttons::Yes_No, Yes, [&] { f.Do("unset DeleteFolders"); });
  f.Do("set DeleteFolders");
  EXPECT_EQ(f.On(), shown);
}

TEST(Options, Permanent_Delete_Stays_While_Deleted_Items_Is_Marked_And_Takes_Picked_Rows_With_It) {
  Window_Fixture f("add Deleted Items/a; load; set PermanentDelete; tick Deleted Items");
  f.Expect({{"Cannot unckeck Permanent Delete box while \"Deleted Items\" is selected.", OK}});
  f.Do("unset PermanentDelete");
  EXPECT_EQ(f.On(), shown + " PermanentDelete");
  f.Do("untick Deleted Items; set SelectByRow; row 1");
  EXPECT_TRUE(f.window.cmdRun.Enabled());
  f.Do("unset PermanentDelete");
  EXPECT_FALSE(f.window.cmdRun.Enabled());
  EXPECT_EQ(f.grid.Marked_Rows(), 0);
}

TEST(Options, Enable_What_Can_Be_Used) {
  Window_Fixture f("add Inbox/a; load; tick Inbox; set SelectByRow");
  MainWindow& w = f.window;
  EXPECT_TRUE(w.cmdRun.Enabled()) << "the row was marked by the filters";
  f.Do("turn-row 1");
  EXPECT_FALSE(w.cmdRun.Enabled()) << "a folder is marked, but no row";
  f.Do("row 1");
  EXPECT_TRUE(w.cmdRun.Enabled());
  w.mnuRefreshCurrent.Click();
  EXPECT_FALSE(w.cmdRun.Enabled()) << "the picked row has gone";
  f.Do("unset SelectByRow; set Turbo");
  f.events.When([&] { return w.cmdRun.Caption() == "&Cancel"; },
                [&] {
                  for (const Control* control : w.controls)
                    EXPECT_EQ(control->Enabled(), control == &w.cmdRun || control == &w.mnuQuit);
                });
  f.box.Answer_Anything();
  w.cmdRun.Click();
  EXPECT_TRUE(w.chkTurbo.Enabled());
  EXPECT_FALSE(w.cmdRun.Enabled());
}

}  // namespace tidyfold
