#include "app/window_fixture.h"

namespace tidyfold {

namespace {

const std::string two = "2 items in 1 folder identified for cleaning.",
                  three = "3 items in 1 folder identified for cleaning.",
                  none = "0 items in 1 folder identified for cleaning.",
                  one_folder = "1 folder identified for deletion.",
                  two_moved = " 2 items were moved to the \"Deleted Items\" folder.",
                  sure = "Permanently delete items in selected folders?",
                  today =
                      "Selecting the date 2023-03-15 may result in all items in selected folders being "
                      "deleted.  Continue?",
                  turbo =
                      "CAUTION!\r\n\r\nTurbo selected.\r\nALL items in selected folders will be "
                      "deleted.\r\n\r\nDo you wish to continue?",
                  whole =
                      "CAUTION!\r\n\r\nALL selected FOLDERS and their content will be permanantly "
                      "deleted.\r\n\r\nPress Yes to delete folders?";

struct Gate {
  const char *path, *options;
  Window_Fixture::Script boxes;
  int processed;  // -1: the run does not begin
};

const Gate gates[] = {
    {"Inbox", "", {{two, OK}, {two_moved, OK}}, 2},
    {"Outbox", "", {{none, OK}, {"No items were processed.", OK}}, 0},
    {"Projects",
     "",
     {{"1 item in 1 folder identified for cleaning.", OK},
      {"1 item was moved to the \"Deleted Items\" folder.", OK}},
     1},
    {"Inbox", "PermanentDelete", {{two, OK}, {sure, Yes}, {" 2 items were deleted.", OK}}, 2},
    {"Inbox", "PermanentDelete SelectDate", {{two, OK}, {sure, No}}, -1},
    {"Inbox", "PermanentDelete SelectDate", {{two, OK}, {sure, Yes}, {today, No}}, -1},
    {"Inbox", "SelectDate", {{two, OK}, {today, Yes}, {two_moved, OK}}, 2},
    {"Inbox", "SelectDate yesterday", {{two, OK}, {two_moved, OK}}, 2},
    {"Inbox", "SelectSubject", {{two, OK}, {"Subject required!", OK}}, -1},
    {"Inbox", "SelectType", {{none, OK}, {"\r\nNo item type selected!", OK}}, -1},
    {"Inbox",
     "SelectSubject SelectType",
     {{none, OK}, {"Subject required!\r\nNo item type selected!", OK}},
     -1},
    {"Inbox", "Turbo", {{three, OK}, {turbo, Yes}, {" 3 items were deleted.", OK}}, 3},
    {"Inbox", "Turbo", {{three, OK}, {turbo, No}}, -1},
    {"Projects", "DeleteFolders", {{one_folder, OK}, {whole, Yes}, {"1 item was deleted.", OK}}, 1},
    {"Projects", "DeleteFolders", {{one_folder, OK}, {whole, No}}, -1},
};

std::string Overflow(int present, int selected) {
  return "Deleted Items Folder Overflow: \r\n\r\n     Deleted Items Folder:\t\t " + std::to_string(present) +
         "\r\n     Selected total:\t\t " + std::to_string(selected) + "\r\n     Combined:\t\t " +
         std::to_string(present + selected) +
         "\r\n     Total Allowed:\t\t 16383\r\n\r\nYou must either: \r\n   - Delete items from the Deleted "
         "Items Folder OR \r\n   - Select fewer items to delete OR \r\n   - Check the Permanent Delete box";
}

}  // namespace

TEST(Gate, Asks_In_Order_And_Ends_At_The_First_No) {
  for (const Gate& gate : gates) {
    SCOPED_TRACE(&gate - gates);
    Window_Fixture f;
    for (const char* path : {"Inbox", "Inbox", "Projects"}) f.Add(path, "read");
    f.Add("Inbox", "unread", true);
    f.Load();
    const std::string options = gate.options;
    if (options.ends_with("yesterday")) f.window.dtpCutoffDate.Set_Value(44999);
    f.Set(options);
    f.Tick(gate.path);
    const auto before = f.Everything();
    std::string panel;
    f.box.on_box = [&](int) { panel = f.window.sbStatusBar.Panel_Text(2); };
    f.Clean(gate.boxes);
    EXPECT_EQ(panel, gate.processed < 0 ? "" : "Total Processed:  " + std::to_string(gate.processed));
    EXPECT_EQ(f.window.sbStatusBar.Panel_Text(2), "");
    EXPECT_EQ(f.Everything() != before, gate.processed > 0);
    const bool refused = gate.processed < 0 && gate.boxes.back().second == OK;
    EXPECT_EQ(f.box.Boxes().back().icon == Icon::Critical, refused);
  }
}

// The two switch one another off, so they are never on together by hand.
TEST(Gate, Turbo_Asks_Before_Delete_Folders) {
  Window_Fixture f;
  f.Load();
  f.Set("DeleteFolders");
  f.window.chkTurbo.Click = {};
  f.Set("Turbo");
  f.Clean({{"0 items in 0 folders identified for cleaning.", OK}, {turbo, No}});
}

TEST(Gate, Deleted_Items_May_Not_Grow_Beyond_Its_Limit) {
  for (const auto& [present, selected] : {std::pair{16000, 383}, {16000, 384}, {16384, 0}}) {
    Window_Fixture f;
    f.Add_Many("Deleted Items", present);
    f.Add_Many("Inbox", selected);
    f.Load();
    f.Tick("Inbox");
    const std::string count = std::to_string(selected) + " items in 1 folder identified for cleaning.";
    if (present + selected <= 16383) {
      f.Clean({{count, OK}, {" 383 items were moved to the \"Deleted Items\" folder.", OK}});
      continue;
    }
    f.Clean({{count, OK}, {Overflow(present, selected), OK}});
    // A record that was reset has forgotten where its items go.
    f.window.mnuRefreshCurrent.Click();
    f.Clean({{count, OK}, {Overflow(present, selected), OK}});
    // A folder that cannot be counted is not an empty one.
    const std::string inbox = f.Folder("Inbox")->EntryID();
    f.plan.Fail_Where(
        [&](const Store_Call& call) { return call.member == "Items.Count" && call.entry_id == inbox; },
        {1, "busy", "store"});
    f.box.Answer_Anything();
    f.window.cmdRun.Click();
    EXPECT_EQ(f.Folder("Deleted Items")->Items()->Count(), present);
    EXPECT_EQ(f.box.Count("Trap:      \t\tCheck_Deleted_Items_Folder"), 1);
  }
}

TEST(Gate, Each_Store_Has_A_Limit_Of_Its_Own_And_Picked_Rows_Count_For_It) {
  Window_Fixture f(2);
  for (const std::size_t store : {1U, 2U}) {
    f.Add_Many("Deleted Items", 16300, store);
    f.Add_Many("Inbox", 100, store);
  }
  f.Load();
  f.Set("ShowAllFolders");
  for (const std::size_t store : {1U, 2U}) f.Tick(f.Node("Inbox", store));
  f.Clean({{"200 items in 2 folders identified for cleaning.", OK},
           {Overflow(16300, 100), OK},
           {Overflow(16300, 100), OK}});
  // 83 of the one store and 100 of the other: the rows stand in the order of the folders.
  f.Set("SelectByRow");
  f.Pick(18);
  f.Pick(200, 1);
  f.Clean({{"183 items identified for cleaning", OK}, {Overflow(16300, 100), OK}});
  f.Pick(100, 1);
  f.Clean({{"83 items identified for cleaning", OK},
           {" 83 items were moved to the \"Deleted Items\" folder.", OK}});
}

}  // namespace tidyfold
