#include "clean/run_fixture.h"

namespace tidyfold {

TEST(Copy_First, Has_All_That_Goes_For_Good_Or_Nothing_Goes) {
  for (const Kind_Of_Run& way : ways) {
    for (const std::string outcome : {"whole", "failed", "cancelled"}) {
      SCOPED_TRACE(way.name + ", " + outcome);
      Kind_Run f(way);
      f.box.directory = "/copies";
      if (outcome == "failed") f.kept_copies.failure = "The disk is full.";
      if (outcome == "cancelled") f.kept_copies.during = [&] { f.window.cmdRun.Click(); };
      f.before_run = [&] { f.Do("set KeepCopy"); };
      f.Run();
      const bool for_good = way == "permanent" || way == "turbo" || way == "folders";
      const auto after = f.Everything();
      if (!for_good || outcome == "whole") {
        EXPECT_EQ(after, f.expected);
      } else {
        EXPECT_EQ(after, f.before);
      }
      EXPECT_EQ(f.kept_copies.items.empty(), !for_good);
      for (const auto& [id, path] : f.before)
        EXPECT_TRUE(after.contains(id) || !f.items.contains(id) || f.kept_copies.items.contains(id)) << id;
      EXPECT_EQ(f.box.Count("the copy is not whole. The disk is full."), for_good && outcome == "failed");
      EXPECT_EQ(f.box.Count("A copy is in \"/copies/copy\"."), for_good && outcome == "whole");
    }
  }
}

TEST(Copy_First, Stays_Off_Without_A_Directory) {
  Window_Fixture f("add Inbox/a; load; set KeepCopy");
  EXPECT_EQ(f.On().find("KeepCopy"), std::string::npos);
}

}  // namespace tidyfold
