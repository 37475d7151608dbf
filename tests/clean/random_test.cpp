#include <random>

#include "clean/run_fixture.h"

namespace tidyfold {

// Random trees, items, options, marks and rows; one run in three starts in the middle of loading.
TEST(Random, A_Run_Takes_Exactly_What_The_Options_Say) {
  int taken = 0;
  for (std::uint32_t seed = 1; seed <= 1000 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto one_of = [&](std::size_t count) { return static_cast<int>(random() % count); };
    Run_Fixture f("", 1 + seed % 2);
    f.box.Answer_Anything();
    std::vector<std::string> paths = {"Inbox", "Deleted Items", "Tasks"};
    for (int number = one_of(8); number >= 0; --number) {
      const char* const names[] = {"/Old", "/Notes", "/Deleted Items"};
      const std::string name = one_of(3) == 0 ? names[one_of(3)] : "/F" + std::to_string(number);
      const auto at = static_cast<std::size_t>(one_of(paths.size() + 1));
      paths.push_back(at == paths.size() ? name.substr(1) : paths[at] + name);
    }
    for (std::size_t at = 0; at < 7 * paths.size(); ++at) {
      const char* const subjects[] = {"re", "Re: x", " re", "Fw: re"};
      New_Item item;
      item.item_class = one_of(3) == 0 ? item_class::note : item_class::mail;
      item.subject = subjects[one_of(4)];
      item.unread = one_of(3) == 0;
      item.flagged = one_of(4) == 0;
      for (Date* date : {&item.received, &item.last_modified}) *date = 44000 + 0.25 * one_of(40);
      const bool second = f.outlook.Stores() == 2 && one_of(2) == 0;
      if (one_of(4) != 0) f.items[f.Add((second ? "2:" : "") + paths[at / 7], item)] = item;
    }
    std::set<std::string> locked;
    for (int number = one_of(3); number > 0; --number)
      f.Do("protected " + *locked.insert(paths[static_cast<std::size_t>(one_of(paths.size()))]).first);
    const auto run = [&] {
      for (const std::string& path : locked) f.protected_nodes.insert(f.Node(path));
      f.window.txtSelectSubject.Set_Text("re");
      f.window.dtpCutoffDate.Set_Value(44005);
      f.window.chkType[0].box.Set_Value(1);  // mail
      for (const std::string option :
           {"PermanentDelete", "ShowAllFolders", "MarkSubFolders", "SelectUnread", "SelectFlagged",
            "SelectDate", "SelectSubject", "MatchCase", "MatchWord", "SelectType", "ConfirmFolders"})
        f.Set(option, one_of(3) == 0);
      f.Set("ShowSelectedItems", one_of(4) != 0);
      if (const int way = one_of(4); way < 2) f.Do(way == 0 ? "set Turbo" : "set DeleteFolders");
      for (int ticks = 1 + one_of(4); ticks > 0; --ticks) {
        f.tree.Tick(1 + one_of(static_cast<std::size_t>(f.tree.Upper_Bound())), one_of(5) != 0);
        f.tree.MouseUp();
        if (one_of(4) != 0 || f.tree.Selected_Item() == 0) continue;
        const int node = f.tree.Selected_Item();
        const bool before = f.window.mnuProtect.Checked();
        EXPECT_EQ(before, f.protected_nodes.contains(node));
        f.window.mnuProtect.Click();
        if (f.Record(node).Folder == nullptr) continue;
        before ? f.protected_nodes.erase(node) : f.protected_nodes.insert(node).second;
      }
      if (seed % 3 != 0 && one_of(4) == 0) f.Do("set SelectByRow");
      for (int clicks = one_of(6); clicks > 0 && f.grid.Rows() > 1; --clicks)
        f.Pick(1 + one_of(static_cast<std::size_t>(f.grid.Rows() - 1)), one_of(3));
      f.Foresee();
      const Clean_Plan plan = f.app.planner.Plan_Run();
      const bool folders = f.window.chkDeleteFolders.Checked() && !f.window.chkTurbo.Checked();
      EXPECT_TRUE(!plan.exact || (folders ? plan.folders_to_go : plan.total.items) == f.to_take);
      f.window.cmdRun.Click();
    };
    if (seed % 3 == 0) f.events.At_Yield(3 + one_of(14), run);
    f.app.Form_Load();
    if (seed % 3 != 0) run();
    EXPECT_EQ(f.Everything(), f.expected);
    EXPECT_EQ(f.app.run.ProcessedCount, f.to_take);
    f.Expect_Agreement();
    taken += f.to_take;
  }
  EXPECT_GT(taken, 1200) << "the chance is too small";
}

}  // namespace tidyfold
