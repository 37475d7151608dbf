#include "clean/run_fixture.h"

namespace tidyfold {

// Where items change their identities on every move, folders have foreign names, there is no Deleted Items,
// or Items.Remove only moves, no more goes than was chosen, and what is said is what was done.
TEST(Strategies, Take_What_Was_Chosen_From_Stores_Of_Every_Behaviour) {
  for (const std::string behaviour : behaviours)
    for (const Kind_Of_Run& way : ways) {
      SCOPED_TRACE(behaviour + ", " + way.name);
      Kind_Run f(way);
      f.outlook.Store(1).Behave(behaviour);
      f.Run();
      f.Expect_As_Foreseen_In(behaviour);
      if (behaviour == "no Deleted Items") continue;
      const bool moved = f.box.Count("items were moved") == 1;
      EXPECT_EQ(f.app.taking_back.Take_Back_Run(std::nullopt).put_back, moved ? f.to_take : 0);
      if (!moved) continue;
      EXPECT_EQ(Kind_Run::Numbers(f.Everything()), Kind_Run::Numbers(f.before));
    }
}

// No name is needed to know a folder by.
TEST(Strategies, Default_Folders_Of_Any_Name_Are_Kept) {
  Window_Fixture f("add Inbox/a");
  f.outlook.Store(1).Behave("local names");
  f.box.Answer_Anything();
  f.app.Form_Load();
  f.Do("tick Gelöschte Elemente");
  EXPECT_FALSE(f.Checked("Gelöschte Elemente"));
  EXPECT_EQ(f.box.Count("Cannot marked \"Deleted Items\" folder"), 1);
  f.Do("set DeleteFolders; tick Entwürfe");
  EXPECT_FALSE(f.Checked("Entwürfe"));
  EXPECT_EQ(f.box.Count("Cannot mark a default folder"), 1);
}

TEST(Strategies, A_Deleted_Branch_Leaves_No_Node_Record_Row_Or_Label) {
  Window_Fixture f("add Old/Alpha/a; folder Old/Notes; load; set DeleteFolders; tick Old/Alpha; tick Old");
  const int alpha = f.Node("Old/Alpha");
  f.box.Answer_Anything();
  f.window.cmdRun.Click();
  // The folder with a default name stays, and with it the one around it.
  EXPECT_EQ(f.box.Count("Process:   \tDelete Folder - Remove"), 1);
  EXPECT_EQ(f.box.Count("Not all items could be deleted"), 1);
  EXPECT_FALSE(f.tree.Exists(alpha));
  EXPECT_EQ(f.Record(alpha).Folder, nullptr);
  EXPECT_FALSE(f.Checked("Old"));
  f.Expect_Agreement();
  f.Folder("Old")->Folders()->Remove(1);
  f.window.mnuRefresh.Click();
  f.Do("set DeleteFolders; tick Old");
  f.window.cmdRun.Click();
  EXPECT_EQ(f.window.lblCurrentFolder.Caption(), "Current Folder: Store 1");
  f.Expect_Agreement();
}

// What the rules forbid when a folder is marked is forbidden still when it is cleaned.
TEST(Strategies, A_Folder_That_Became_A_Default_One_Is_Kept) {
  for (const std::string options : {"set ConfirmItems; ", "set DeleteFolders; "}) {
    Window_Fixture f("add Old/a; load; " + options + "tick Old");
    f.outlook.Store(1).Rename_Folder(*f.Folder("Old"), "Deleted Items");
    const auto before = f.Everything();
    f.box.Answer_Anything();
    f.window.cmdRun.Click();
    EXPECT_EQ(f.Everything(), before);
    EXPECT_EQ(f.box.Count("Not all items could be deleted"), 1);
  }
}

// Another Tidyfold has protected what is about to be cleaned, or a folder above it.
TEST(Strategies, A_Folder_That_Was_Protected_Meanwhile_Is_Kept_And_Named) {
  for (const Kind_Of_Run& way : ways) {
    for (const std::string above : {"protected Inbox; protected Old; protected Old/Deep", "protected "}) {
      SCOPED_TRACE(way.name + above);
      Kind_Run f(way);
      f.before_run = [&] { f.Do(above); };
      f.Run();
      EXPECT_EQ(f.Everything(), f.before);
      EXPECT_GT(f.box.Count("is protected."), 0);
      EXPECT_EQ(f.box.Count("Not all items could be deleted"), 1);
    }
  }
}

TEST(Strategies, A_Folder_That_Lies_Below_A_Protected_One_Now_Is_Kept) {
  for (const std::string behaviour : {"", "two texts"}) {
    Window_Fixture f("add Old/a; protected Inbox; load; tick Old");
    f.outlook.Store(1).Behave(behaviour);
    f.outlook.Store(1).Move_Folder(*f.Folder("Old"), *f.Folder("Inbox"));
    const auto before = f.Everything();
    f.box.Answer_Anything();
    f.window.cmdRun.Click();
    EXPECT_EQ(f.Everything(), before) << behaviour;
    EXPECT_GT(f.box.Count("is protected."), 0) << behaviour;
  }
}

TEST(Strategies, Confirmations_Name_What_Goes_And_Are_Obeyed) {
  Window_Fixture f(
      "add Inbox/a; add Inbox/b; add Old/c; load; set ConfirmFolders ConfirmItems; tick Old; tick Inbox");
  const std::string count = "3 items in 2 folders identified for cleaning.";
  const std::string move_inbox = "Move 2 items in \"Inbox\" folder to \"Deleted Items\" folder?";
  f.Expect({{count, OK}, {move_inbox, Yes}});
  f.box.Expect(Exact("Move item a to \"Deleted Items\" folder?"), Buttons::Yes_No_Cancel, No);
  f.box.Expect(Exact("Move item b to \"Deleted Items\" folder?"), Buttons::Yes_No_Cancel, Cancel);
  f.Clean({{"No items were processed.", OK}});
  EXPECT_TRUE(f.Checked("Old")) << "what was not reached keeps its mark";
  EXPECT_TRUE(f.app.run.Cancelled) << "what was not reached keeps its mark";
  f.Do("untick Old; tick Inbox");
  f.Clean({{"2 items in 1 folder identified for cleaning.", OK},
           {move_inbox, No},
           {"No items were processed.", OK}});
  f.Do("tick Old; tick Inbox");
  f.Clean({{count, OK}, {move_inbox, Cancel}, {"No items were processed.", OK}});
  EXPECT_TRUE(f.Checked("Old")) << "Cancel ends the run";
  f.Do("untick Old; tick Inbox");
  f.Clean({{"2 items in 1 folder identified for cleaning.", OK},
           {move_inbox, No},
           {"No items were processed.", OK}});
  EXPECT_EQ(f.grid.Marked_Rows(), 0) << "a declined folder is unmarked, and so are its rows";
  f.Do("tick Old; set PermanentDelete");
  f.Expect({{"1 item in 1 folder identified for cleaning.", OK},
            {"Permanently delete items in selected folders?", Yes},
            {"Delete 1 items in \"Old\" folder?", Yes}});
  f.box.Expect(Exact("Delete item c?"), Buttons::Yes_No_Cancel, Yes);
  f.Clean({{"1 item was deleted.", OK}});
}

TEST(Strategies, The_Walk_Takes_Children_First_And_Says_So) {
  Window_Fixture f("add Inbox/Sub/Deep/a; add Inbox/Sub/b; load; tick Inbox/Sub/Deep; tick Inbox/Sub");
  f.events.When([&] { return f.tree.Text(f.Node("Inbox/Sub")) == "Sub - (1) <<<<"; }, [] {});
  f.box.Answer_Anything();
  f.window.cmdRun.Click();
  const std::string& trace = f.app.run.RunTrace;
  EXPECT_TRUE(trace.starts_with("START\r\n**Calendar - (0)\r\n**Contacts - (0)")) << trace;
  EXPECT_NE(trace.find("\r\n****Deep - (1)\r\n***Sub - (1)\r\n**Inbox - (0)"), std::string::npos) << trace;
  EXPECT_GT(trace.find("\r\n*Store 1 - ("), trace.find("\r\n**Tasks")) << trace;
}

TEST(Strategies, The_Status_Line_Tells_Every_Hundred) {
  const std::string folder = "Cleaning Folder \"spaced\": Checked: ";
  const std::set<std::string> by_folder = {folder + "100, Deleted: Folder - 100, Total - 100",
                                           folder + "200, Deleted: Folder - 200, Total - 200"};
  const std::set<std::string> by_row = {"Cleaning Items: Processed - 51, Cleaned - 51",
                                        "Cleaning Items: Processed - 151, Cleaned - 151"};
  for (const std::string option : {"Turbo", "", "SelectByRow"}) {
    Window_Fixture f;
    f.Add("Inbox/ spaced ", "a", 250);
    f.Do("load; tick Inbox/ spaced ; set " + option);
    f.box.Answer_Anything();
    std::set<std::string> texts;
    const StatusBar& bar = f.window.sbStatusBar;
    f.window.sbStatusBar.changed = [&] {
      if (bar.Panel_Text(1).starts_with("Cleaning") && bar.Panel_Text(2).find(',') != std::string::npos)
        texts.insert(bar.Panel_Text(1) + ": " + bar.Panel_Text(2));
    };
    f.window.cmdRun.Click();
    EXPECT_EQ(texts, option == "SelectByRow" ? by_row : by_folder);
    f.window.sbStatusBar.changed = {};
  }
}

}  // namespace tidyfold
