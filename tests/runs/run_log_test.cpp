#include "runs/log_fixture.h"

namespace tidyfold {
namespace {

using Run_Log_Test = Log_Fixture;

TEST_F(Run_Log_Test, KeepsWhatARunWasToDoAndWhatBecameOfIt) {
  EXPECT_TRUE(Run_Log(file).Runs().empty());
  EXPECT_FALSE(std::filesystem::exists(file)) << "Looking makes no file.";
  Run_Header header;
  header.stores = {{"S1", "Personal", "/home/me/a.tidyfold"}};
  header.options = "Cut-off date 2005-12-31";
  header.items = 4, header.bytes = 1 << 20, header.folders = 2, header.exact = false;
  {
    Run_Log log(file);
    EXPECT_EQ(log.Begin(header, now), 1);
    for (const char* id : {"I1", "I2", "I3", "I4"}) log.Note(Noted(id));
    log.Set_Result(4, Item_Result::Declined);  // before it is written
    log.Flush();
    log.Set_Result(1, Item_Result::Done, "I1b");
    log.Set_Result(2, Item_Result::Failed, {}, "It is locked.");
    log.Set_Result(3, Item_Result::Changed);
    EXPECT_EQ(log.Run(1)->state, Run_State_In_Log::Under_Way);
    log.End({1, true, false}, now + 1);
    log.Begin({}, now);
    log.End({0, false, true}, now);
  }
  Run_Log log(file);
  const std::vector<Logged_Run> runs = log.Runs();
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0].run, 2);
  EXPECT_TRUE(runs[0].outcome.cancelled);
  const Logged_Run& run = runs[1];
  EXPECT_EQ(run.state, Run_State_In_Log::Ended);
  EXPECT_EQ(run.began, "2023-03-15T12:34:56");
  EXPECT_EQ(run.ended, "2023-03-16T12:34:56");
  ASSERT_EQ(run.header.stores.size(), 1U);
  EXPECT_EQ(run.header.stores[0].place, "/home/me/a.tidyfold");
  EXPECT_EQ(run.header.options, header.options);
  EXPECT_FALSE(run.header.exact);
  EXPECT_EQ(run.outcome.processed, 1);
  EXPECT_TRUE(run.outcome.not_all_deleted);

  const std::vector<Logged_Item> items = Items(log, 1);
  ASSERT_EQ(items.size(), 4U);
  const Item_Result results[] = {Item_Result::Done, Item_Result::Failed, Item_Result::Changed,
                                 Item_Result::Declined};
  for (std::size_t i = 0; i < items.size(); ++i) EXPECT_EQ(items[i].result, results[i]) << i;
  EXPECT_EQ(items[0].Id_After(), "I1b");
  EXPECT_EQ(items[1].reason, "It is locked.");
  EXPECT_EQ(items[3].subject, "Subject of I4");
}

TEST_F(Run_Log_Test, FindsWhatCanBeTakenBack) {
  Run_Log log(file);
  const auto run = [&](std::int64_t undo_of, Item_Action action, std::int64_t processed) {
    Run_Header header;
    header.kind = undo_of == 0 ? Run_Kind::Cleaning : Run_Kind::Taking_Back;
    header.undo_of = undo_of;
    const std::int64_t number = log.Begin(header, now);
    Logged_Item item = Noted("I1", action);
    item.folder.path = "Folder of run " + std::to_string(number);
    log.Set_Result(log.Note(item), Item_Result::Done, "J1");
    log.End({processed, false, false}, now);
    return number;
  };
  EXPECT_FALSE(log.Last_To_Take_Back());
  const std::int64_t first = run(0, Item_Action::Moved, 1);
  const std::int64_t second = run(0, Item_Action::Moved, 1);
  run(0, Item_Action::Moved, 0);
  EXPECT_EQ(log.Last_To_Take_Back()->run, second) << "The last has done nothing.";
  EXPECT_EQ(log.Find_Moved("S1", "J1")->folder.path, "Folder of run 3");
  EXPECT_FALSE(log.Find_Moved("S1", "I1")) << "It has another EntryID now.";
  EXPECT_FALSE(log.Find_Moved("S2", "J1"));
  log.Mark_Taken_Back(second, run(second, Item_Action::Put_Back, 1));
  EXPECT_EQ(log.Last_To_Take_Back()->run, first);
  EXPECT_EQ(log.Run(second)->taken_back, 4);
}

TEST_F(Run_Log_Test, KeepsFiftyRunsAndNothingOfOlderOnes) {
  Run_Log log(file);
  for (int i = 1; i <= runs_kept + 3; ++i) {
    Run_Header header;
    header.stores = {{"S1", "Personal", ""}};
    log.Begin(header, now);
    for (int item = 0; item < 3; ++item) log.Note(Noted(std::to_string(item)));
    log.End({3, false, false}, now);
  }
  const std::vector<Logged_Run> runs = log.Runs();
  ASSERT_EQ(runs.size(), static_cast<std::size_t>(runs_kept));
  EXPECT_EQ(runs.back().run, 4);
  EXPECT_EQ(Items(log, 4).size(), 3U);
  for (const char* table : {"run", "store", "folder"})
    EXPECT_EQ(Number_By_Sql(file, std::string("SELECT COUNT(*) FROM ") + table), runs_kept) << table;
  EXPECT_EQ(Number_By_Sql(file, "SELECT COUNT(*) FROM item"), 3 * runs_kept);
}

TEST_F(Run_Log_Test, SaysWhichFileCannotBeUsedAndWhatToDo) {
  const auto expect = [&](const std::filesystem::path& path, const std::string& part) {
    try {
      Run_Log(path).Begin({}, now);
      ADD_FAILURE() << "Nothing was said: " << part;
    } catch (const Run_Log_Error& error) {
      const std::string text = error.what();
      EXPECT_NE(text.find(part), std::string::npos) << text;
      EXPECT_NE(text.find(path.string()), std::string::npos) << text;
    }
  };
  Write_Bytes(folder / "text", "Something that is no database at all, and long enough to tell that.");
  expect(folder / "text", "Move it away");
  expect(folder / "text" / "below" / "runs.sqlite", "Make its folder writable");
  { Run_Log(file).Begin({}, now); }
  Run_Sql(file, "PRAGMA user_version = 2");
  expect(file, "later version");
  Run_Sql(file, "PRAGMA application_id = 2");
  expect(file, "another program's");
  expect({}, "HOME");
}

}  // namespace
}  // namespace tidyfold
