#include <random>

#include "clean/run_fixture.h"

namespace tidyfold {

// Random trees, items, options, marks and rows; one run in three starts in the middle of loading.
TEST(Random, A_Run_Takes_Exactly_What_The_Options_Say) {
  int taken = 0;
  for (std::uint32_t seed = 1; seed <= 300 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto one_of = [&](std::size_t count) { return static_cast<int>(random() % count); };
    Run_Fixture f(1 + seed % 2);
    f.box.Answer_Anything();
    std::vector<std::string> paths = {"", "Inbox", "Deleted Items", "Tasks"};
    for (int number = one_of(8); number >= 0; --number) {
      const char* const names[] = {"Old", "Notes", "Deleted Items"};
      const std::string parent = paths[static_cast<std::size_t>(one_of(paths.size()))];
      const std::string name = one_of(3) == 0 ? names[one_of(3)] : "F" + std::to_string(number);
      paths.push_back(parent.empty() ? name : parent + "/" + name);
    }
    for (std::size_t at = 0; at < 7 * paths.size() * f.outlook.Stores(); ++at) {
      const std::int32_t classes[] = {43, 26, 48, 44, 53, 69};
      const char* const subjects[] = {"re", "Re: x", " re", "RE ", "Fw: re", ""};
      New_Item item;
      item.item_class = classes[one_of(6)];
      item.subject = subjects[one_of(6)];
      item.unread = one_of(3) == 0;
      for (Date* date : {&item.received, &item.last_modified, &item.completed, &item.due, &item.end})
        if (one_of(4) != 0) *date = 44000 + 0.25 * one_of(40);
      if (one_of(4) != 0) f.Put(paths[at / 7 % paths.size()], 1 + at / 7 / paths.size(), item);
    }
    const auto run = [&] {
      f.window.txtSelectSubject.Set_Text("re");
      f.window.dtpCutoffDate.Set_Value(44005);
      f.window.chkType[0].box.Set_Value(1);
      for (const char* option :
           {"PermanentDelete", "ShowAllFolders", "MarkSubFolders", "SelectUnread", "SelectDate",
            "SelectSubject", "MatchCase", "MatchWord", "SelectType", "ConfirmFolders"})
        f.Set(option, one_of(3) == 0);
      if (one_of(4) == 0) f.Set("ShowSelectedItems", 0);
      if (const int way = one_of(4); way < 2) f.Set(way == 0 ? "Turbo" : "DeleteFolders");
      for (int ticks = 1 + one_of(4); ticks > 0; --ticks)
        f.Tick(1 + one_of(static_cast<std::size_t>(f.tree.Upper_Bound())), one_of(5) != 0);
      if (seed % 3 != 0 && one_of(4) == 0) f.Set("SelectByRow");
      for (int clicks = one_of(6); clicks > 0 && f.window.grdItems.Rows() > 1; --clicks)
        f.Pick(1 + one_of(static_cast<std::size_t>(f.window.grdItems.Rows() - 1)), one_of(3));
      f.Foresee();
      f.window.cmdRun.Click();
    };
    if (seed % 3 == 0) f.events.At_Yield(3 + one_of(14), run);
    f.app.Form_Load();
    if (seed % 3 != 0) run();
    EXPECT_EQ(f.Everything(), f.expected);
    EXPECT_EQ(f.app.Run().ProcessedCount, f.to_take);
    f.Expect_Agreement();
    taken += f.to_take;
  }
  EXPECT_GT(taken, 1000) << "the chance is too small";
}

}  // namespace tidyfold
