#include "app/window_fixture.h"

namespace tidyfold {

TEST(Strategies, Picked_Rows_Go_By_The_Whole_Index) {
  Window_Fixture f;
  for (int node = 1; node <= 1000; ++node) f.Folder("Many/" + std::to_string(node));
  const std::string id = f.Add("Many/1000", "beyond three digits");
  f.Load();
  f.Set("SelectByRow");
  f.Click("Many/1000");
  EXPECT_EQ(f.window.grdItems.TextMatrix(1, 0).size(), 10U);
  f.Pick(1);
  f.Clean(
      {{"1 item identified for cleaning", OK}, {"1 item was moved to the \"Deleted Items\" folder.", OK}});
  EXPECT_EQ(f.Everything()["STORE1 " + id], "/Deleted Items");
}

TEST(Strategies, A_Deleted_Branch_Leaves_No_Node_Record_Row_Or_Label) {
  Window_Fixture f;
  f.Add("Projects/Alpha", "goes");
  f.Folder("Projects/Notes");
  f.Load();
  f.Set("DeleteFolders");
  for (const char* path : {"Projects/Alpha", "Projects"}) f.Tick(path);
  const int alpha = f.Node("Projects/Alpha");
  f.box.Answer_Anything();
  f.window.cmdRun.Click();
  // The folder with a default name stays, and with it the one around it.
  EXPECT_EQ(f.box.Count("Process:   \tDelete Folder - Remove"), 1);
  EXPECT_EQ(f.box.Count("Not all items could be deleted"), 1);
  EXPECT_TRUE(!f.tree.Exists(alpha) && f.Record(alpha).Folder == nullptr && !f.Checked("Projects"));
  f.Expect_Agreement();
  f.Folder("Projects")->Folders()->Remove(1);
  f.window.mnuRefresh.Click();
  f.Set("DeleteFolders");
  f.Tick("Projects");
  f.window.cmdRun.Click();
  EXPECT_EQ(f.window.lblCurrentFolder.Caption(), "Current Folder: Store 1");
  EXPECT_EQ(f.window.grdItems.Rows(), 1);
  f.Expect_Agreement();
}

TEST(Strategies, Confirmations_Name_What_Goes_And_Are_Obeyed) {
  Window_Fixture f;
  for (const char* subject : {"a", "b"}) f.Add("Inbox", subject);
  f.Add("Projects", "c");
  f.Load();
  f.Set("ConfirmFolders ConfirmItems");
  for (const char* path : {"Projects", "Inbox"}) f.Tick(path);
  const std::string count = "3 items in 2 folders identified for cleaning.";
  // No to an item, then Cancel: what was not reached keeps its mark.
  f.Expect({{count, OK}, {"Move 2 items in \"Inbox\" folder to \"Deleted Items\" folder?", Yes}});
  f.box.Expect(Exact("Move item a to \"Deleted Items\" folder?"), Buttons::Yes_No_Cancel, No);
  f.box.Expect(Exact("Move item b to \"Deleted Items\" folder?"), Buttons::Yes_No_Cancel, Cancel);
  f.Clean({{"No items were processed.", OK}});
  EXPECT_TRUE(f.Checked("Projects") && f.app.Run().Cancelled && f.Folder("Inbox")->Items()->Count() == 2);
  f.Tick("Inbox");
  f.Set("PermanentDelete");
  f.Expect({{count, OK},
            {"Permanently delete items in selected folders?", Yes},
            {"Delete 2 items in \"Inbox\" folder?", No},
            {"Delete 1 items in \"Projects\" folder?", Yes}});
  f.box.Expect(Exact("Delete item c?"), Buttons::Yes_No_Cancel, Yes);
  f.Clean({{"1 item was deleted.", OK}});
  EXPECT_FALSE(f.Checked("Inbox"));
  EXPECT_EQ(f.window.grdItems.Marked_Rows(), 0) << "a declined folder is unmarked, and so are its rows";
  f.Expect_Agreement();
}

TEST(Strategies, The_Walk_Takes_Children_First_And_Says_So) {
  Window_Fixture f;
  f.Add("Inbox/Sub/Deep", "a");
  f.Add("Inbox/Sub", "b");
  f.Load();
  for (const char* path : {"Inbox/Sub/Deep", "Inbox/Sub"}) f.Tick(path);
  f.tree.Set_Expanded(f.Node("Inbox"), false);
  f.events.When([&] { return f.tree.Text(f.Node("Inbox/Sub")) == "Sub - (1) <<<<"; }, [] {});
  f.box.Answer_Anything();
  f.window.cmdRun.Click();
  EXPECT_TRUE(f.tree.Expanded(f.Node("Inbox")));
  const std::string& trace = f.app.Run().RunTrace;
  EXPECT_TRUE(trace.starts_with("START\r\n**Calendar - (0)\r\n**Contacts - (0)")) << trace;
  EXPECT_NE(trace.find("\r\n****Deep - (1)\r\n***Sub - (1)\r\n**Inbox - (0)"), std::string::npos) << trace;
  EXPECT_GT(trace.find("\r\n*Store 1 - ("), trace.find("\r\n**Tasks")) << trace;
}

TEST(Strategies, The_Status_Line_Tells_Every_Hundred) {
  for (const std::string option : {"Turbo", "", "SelectByRow"}) {
    Window_Fixture f;
    f.Add_Many("Inbox/ spaced ", 250);
    f.Load();
    f.Tick("Inbox/ spaced ");
    f.Set(option);
    f.box.Answer_Anything();
    std::set<std::string> texts;
    f.window.sbStatusBar.changed = [&] {
      const StatusBar& bar = f.window.sbStatusBar;
      if (bar.Panel_Text(1).starts_with("Cleaning") && bar.Panel_Text(2).find(',') != std::string::npos)
        texts.insert(bar.Panel_Text(1) + ": " + bar.Panel_Text(2));
    };
    f.window.cmdRun.Click();
    f.window.sbStatusBar.changed = {};
    const std::set<std::string> by_row = {"Cleaning Items: Processed - 51, Cleaned - 51",
                                          "Cleaning Items: Processed - 151, Cleaned - 151"};
    const std::set<std::string> by_folder = {
        "Cleaning Folder \"spaced\": Checked: 100, Deleted: Folder - 100, Total - 100",
        "Cleaning Folder \"spaced\": Checked: 200, Deleted: Folder - 200, Total - 200"};
    EXPECT_EQ(texts, option == "SelectByRow" ? by_row : by_folder);
  }
}

}  // namespace tidyfold
