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
  std::string steps;
  Window_Fixture::Script boxes;
  int processed;  // -1: the run does not begin
};

const Gate gates[] = {
    {"tick Inbox", {{two, OK}, {two_moved, OK}}, 2},
    {"tick Outbox", {{none, OK}, {"No items were processed.", OK}}, 0},
    {"tick Inbox; set PermanentDelete", {{two, OK}, {sure, Yes}, {" 2 items were deleted.", OK}}, 2},
    {"tick Inbox; set PermanentDelete SelectDate", {{two, OK}, {sure, No}}, -1},
    {"tick Inbox; set PermanentDelete SelectDate", {{two, OK}, {sure, Yes}, {today, No}}, -1},
    {"tick Inbox; set SelectDate", {{two, OK}, {today, Yes}, {two_moved, OK}}, 2},
    {"tick Inbox; cut-off 44999; set SelectDate", {{two, OK}, {two_moved, OK}}, 2},
    {"tick Inbox; set SelectSubject", {{two, OK}, {"Subject required!", OK}}, -1},
    {"tick Inbox; set SelectType", {{none, OK}, {"\r\nNo item type selected!", OK}}, -1},
    {"tick Inbox; set SelectSubject SelectType",
     {{none, OK}, {"Subject required!\r\nNo item type selected!", OK}},
     -1},
    {"tick Inbox; set Turbo", {{three, OK}, {turbo, Yes}, {" 3 items were deleted.", OK}}, 3},
    {"tick Inbox; set Turbo", {{three, OK}, {turbo, No}}, -1},
    {"set DeleteFolders; tick Projects", {{one_folder, OK}, {whole, Yes}, {"1 item was deleted.", OK}}, 1},
    {"set DeleteFolders; tick Projects", {{one_folder, OK}, {whole, No}}, -1},
    {"set DeleteFolders; tick Projects; force Turbo",
     {{"1 item in 1 folder identified for cleaning.", OK}, {turbo, No}},
     -1},
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
  for (const auto& [steps, boxes, processed] : gates) {
    SCOPED_TRACE(steps);
    Window_Fixture f("add Inbox/a; add Inbox/b; add Inbox/unread; add Projects/c; load");
    f.Do(steps);
    const auto before = f.Everything();
    std::string panel;
    f.box.on_box = [&](int) { panel = f.window.sbStatusBar.Panel_Text(2); };
    f.Clean(boxes);
    EXPECT_EQ(panel, processed < 0 ? "" : "Total Processed:  " + std::to_string(processed));
    EXPECT_EQ(f.Everything() != before, processed > 0);
    EXPECT_EQ(f.box.Boxes().back().icon == Icon::Critical, processed < 0 && boxes.back().second == OK);
  }
}

// Each store by itself: the first one is full to the last place, the second one item over.
TEST(Gate, Deleted_Items_May_Not_Grow_Beyond_Its_Limit) {
  Window_Fixture f("", 2);
  f.Add("Deleted Items", "old", 16000);
  f.Add("2:Deleted Items", "old", 16000);
  f.Add("Inbox", "new", 383);
  f.Add("2:Inbox", "new", 384);
  f.Do("load; set ShowAllFolders; tick Inbox; tick 2:Inbox");
  const Window_Fixture::Script refused = {{"767 items in 2 folders identified for cleaning.", OK},
                                          {Overflow(16000, 384), OK}};
  f.Clean(refused);
  // A record that was reset has forgotten where its items go.
  f.window.mnuRefreshCurrent.Click();
  f.Clean(refused);
  f.Add("Deleted Items", "one more");
  f.Clean({refused[0], {Overflow(16001, 383), OK}, refused[1]});
  // What the filters leave is what counts.
  f.Do("set SelectDate; cut-off 44000");
  f.Clean({{"767 items in 2 folders identified for cleaning.", OK},
           {Overflow(16001, 383), OK},
           {Overflow(16000, 384), OK}});
  f.Do("cut-off 43999");
  f.Clean({{"0 items in 2 folders identified for cleaning.", OK}, {"No items were processed.", OK}});
  f.Do("unset SelectDate");
  // The limit is that of the store, and the message names it.
  f.limits.Set_Limit("STORE1", 0);
  f.limits.Set_Limit("STORE2", 20000);
  f.limits.Set_Limit("STORE2", 16380);
  std::string other = Overflow(16000, 384);
  other.replace(other.find(" 16383"), 6, " 16380");
  f.Clean({refused[0], {other, OK}});
  for (const char* store : {"STORE1", "STORE2"}) f.limits.Set_Limit(store, default_deleted_items_limit);
  f.Folder("Deleted Items")->Items()->Remove(1);
  // Rows: one of the first store, then the one too many of the second.
  f.Do("set SelectByRow; row 383; rows-to 767");
  f.Clean({{"385 items identified for cleaning", OK}, refused[1]});
  f.Do("rows-to 766");
  f.Clean({{"384 items identified for cleaning", OK},
           {" 384 items were moved to the \"Deleted Items\" folder.", OK}});
}

}  // namespace tidyfold
