#include "base/file_path.h"
#include "cache/item_dates.h"
#include "program.h"
#include "runs/run_log.h"
#include "stores/sqlite/embedded_outlook.h"

namespace tidyfold::cli {
namespace {

class Runs : public Program_Test {
 protected:
  Runs() { Make_Sample(); }

  // Deletes the first items of the Inbox as a run does that is killed after them, or ends.
  std::vector<std::string> Clean_Inbox(int count, bool killed = false) {
    Run_Log log(folder_ / "state" / "tidyfold" / "runs.sqlite");
    Embedded_Outlook outlook;
    outlook.Open({File_Path(store_)});
    const MAPIFolder_Ptr inbox =
        outlook.CreateObject("Outlook.Application")->GetNamespace("MAPI")->GetDefaultFolder(6);
    Run_Header header;
    header.stores = {{inbox->StoreID(), "Sample", store_}};
    header.options = "Cut-off date, \"2005\"";
    log.Begin(header, 45000.5);
    std::vector<std::string> ids;
    for (int i = 0; i < count; ++i) {
      const Item_Ptr item = inbox->Items()->Item(1);
      Logged_Item logged;
      logged.folder = Describe_Folder(*inbox);
      logged.entry_id = item->EntryID();
      logged.subject = item->Subject();
      logged.item_class = item->Class();
      logged.date = Get_Item_Date(*item, logged.item_class);
      logged.result = killed ? Item_Result::Begun : Item_Result::Done;
      log.Note(logged);
      item->Delete();
      ids.push_back(logged.entry_id);
    }
    log.Flush();
    if (!killed) log.End({count, false, false}, 45000.6);
    return ids;
  }
};

TEST_F(Runs, are_listed_in_each_form) {
  const std::vector<std::string> ids = Clean_Inbox(3);
  Clean_Inbox(2);
  const Json runs = Run({"runs", "--json"}).Document();
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0]["run"], 2);
  EXPECT_EQ(runs[1]["began"], "2023-03-15T12:00:00");
  EXPECT_EQ(runs[1]["state"], "ended");
  EXPECT_EQ(runs[1]["processed"], 3);
  const Json items = Run({"runs", "1", "--json"}).Document();
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[0]["entry_id"], ids[0]);
  EXPECT_EQ(items[0]["result"], "done");
  const std::string csv = Run({"runs", "--csv"}).out;
  EXPECT_NE(csv.find(",ended," + store_ + ",\"Cut-off date, \"\"2005\"\"\",3,false,"), std::string::npos)
      << csv;
  const std::string text = Run({"runs", "2"}).out;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3) << text;
  EXPECT_EQ(Run({"runs", "9"}).status, 2);
}

TEST_F(Runs, are_taken_back) {
  const Json before = All_Items();
  Clean_Inbox(40);
  const std::string bytes = Bytes_Of(store_);
  const Outcome unasked = On_Store({"undo"});
  EXPECT_EQ(unasked.status, 3) << unasked.err;
  EXPECT_NE(unasked.out.find("40 items will be put back"), std::string::npos) << unasked.out;
  EXPECT_EQ(Bytes_Of(store_), bytes);

  // The store is known from the log.
  const Outcome undone = Run({"undo", "--yes", "--json"});
  EXPECT_EQ(undone.status, 0) << undone.err;
  const Json document = undone.Document();
  EXPECT_EQ(document["put_back"], 40);
  EXPECT_EQ(document["not_put_back"], Json::array());
  const auto sorted = [](Json items) {
    std::sort(items.begin(), items.end());
    return items;
  };
  EXPECT_EQ(sorted(All_Items()), sorted(before));
  EXPECT_EQ(On_Store({"check"}).status, 0);
  EXPECT_TRUE(Run({"runs", "--json"}).Document()[1]["taken_back"]);
  EXPECT_EQ(On_Store({"undo", "--yes"}).out, "There is no run to take back.\n");
  EXPECT_EQ(On_Store({"undo", "2", "--yes"}).status, 3) << "That one put back.";
}

TEST_F(Runs, that_cannot_be_taken_back_whole_name_what_stays) {
  const std::vector<std::string> ids = Clean_Inbox(3);
  ASSERT_EQ(Run({"sample", Path("other"), "--seed", "2"}).status, 0);
  const Outcome elsewhere = Run({"--store", Path("other"), "undo", "--yes"});
  EXPECT_EQ(elsewhere.status, 1);
  EXPECT_NE(elsewhere.err.find("Its store is not open."), std::string::npos) << elsewhere.err;
  EXPECT_FALSE(Run({"runs", "--json"}).Document().back()["taken_back"]);
  Alter(("UPDATE item SET subject = 'Another' WHERE 'I' || id = '" + ids[1] + "'").c_str());
  const Outcome undone = On_Store({"undo", "1", "--yes", "--json"});
  EXPECT_EQ(undone.status, 1);
  EXPECT_EQ(undone.Document()["put_back"], 2);
  EXPECT_EQ(undone.Document()["not_put_back"][0]["entry_id"], ids[1]);
  EXPECT_NE(undone.err.find("was not put back: It was changed since it was deleted: its subject is another."),
            std::string::npos)
      << undone.err;
}

TEST_F(Runs, that_were_killed_are_told_once_and_taken_back) {
  Clean_Inbox(3, true);
  EXPECT_EQ(Run({"runs", "--json"}).Document()[0]["state"], "killed");
  const Outcome undone = On_Store({"undo", "--yes"});
  EXPECT_EQ(undone.status, 0) << undone.err;
  EXPECT_NE(
      undone.err.find("Run 1 (2023-03-15 12:00) was killed. No items were processed; of 3 more that is not "
                      "known."),
      std::string::npos)
      << undone.err;
  EXPECT_NE(undone.out.find("3 items were put back."), std::string::npos) << undone.out;
  EXPECT_EQ(On_Store({"undo", "--yes"}).err, "");
  Clean_Inbox(1, true);
  const Words clean = Split("clean --folder Notes --subject nothing-begins-so");
  EXPECT_EQ(On_Store(clean + Words{"--dry-run"}).err, "");
  EXPECT_NE(On_Store(clean + Words{"--yes"}).err.find(" was killed."), std::string::npos);
  EXPECT_EQ(On_Store(clean + Words{"--yes"}).err, "");
}

}  // namespace
}  // namespace tidyfold::cli
