// Whole runs while store calls fail, other programs work in the same store, and commands come in every yield
// and box: a run ends, its counts add up, and nothing goes that was not chosen.
#include <random>

#include "clean/run_fixture.h"

namespace tidyfold {

TEST(Faults, A_Call_That_Fails_Costs_What_It_Was_About_And_No_More) {
  int met = 0;
  for (const Kind_Of_Run& way : ways)
    for (const std::string member :
         {"NameSpace.GetItemFromID", "Items.Count",        "Items.Item",       "Items.Remove",
          "Folders.Count",           "Folders.Item",       "Folders.Remove",   "MAPIFolder.Name",
          "MAPIFolder.EntryID",      "MAPIFolder.StoreID", "MAPIFolder.Items", "MAPIFolder.Folders",
          "MAPIFolder.Parent",       "Item.Subject",       "Item.Class",       "Item.EntryID",
          "Item.ReceivedTime",       "Item.Parent",        "Item.Delete",      "Item.Move"})
      for (int number = 0, thrown = 1; thrown > 0 || number == 1; ++number) {  // 0: always
        SCOPED_TRACE(way.name + " " + member + std::to_string(number));
        Kind_Run f(way);
        f.before_run = [&] {
          if (number == 0) f.plan.Fail_Always(member, {1, "it fails", "store"});
          f.plan.Fail_Call(member, number, {1, "it fails", "store"});
        };
        f.Run();
        thrown = f.plan.Thrown();
        met += thrown > 0 ? 1 : 0;
        f.plan.Forget_Faults();
        f.Expect_Nothing_Else();
        EXPECT_EQ(f.window.cmdRun.Caption(), "&Clean");
        EXPECT_TRUE(f.window.chkTurbo.Enabled());
        EXPECT_TRUE(!f.app.run.NotAllDeleted || f.box.Count("it fails") > 0) << "said without a reason";
        f.window.mnuRefresh.Click();
        f.Expect_Agreement();
        if (HasFailure()) return;
      }
  EXPECT_GT(met, 500);
}

// The program behind the store ends at every call of loading and of the run, or its file lies on a share that
// is no longer there.
TEST(Faults, A_Store_That_Vanishes_Is_Told_Of_Once_And_Ends_What_Is_Under_Way) {
  const std::string gone = "Outlook was closed.";
  for (const bool in_run : {false, true})
    for (const Kind_Of_Run& way : ways)
      for (int number = 1, calls = number; calls >= number && !HasFailure(); ++number) {
        if (!in_run && !(way == "cached")) break;
        SCOPED_TRACE(way.name + (in_run ? " run " : " loading ") + std::to_string(number));
        Kind_Run f(way);
        calls = 0;
        int late = 0;
        Kind_Run::Contents then = f.expected;
        const auto vanish = [&] {
          f.plan.Fail_Where(
              [&](const Store_Call& call) {
                if (++calls == number) then = f.Everything();
                if (calls > number && call.member != "MAPIFolder.Name") ++late;
                return calls >= number;
              },
              {automation_error::unavailable, gone, "store"});
        };
        f.before_run = vanish;
        in_run ? f.Run() : (vanish(), f.app.Form_Load());
        const bool vanished = calls >= number, closed = !f.window.frmRemoveItems.Loaded();
        const bool unreached = f.box.Count("Unable to initialize") == 1;
        EXPECT_EQ(f.box.Count(gone), vanished && !unreached ? 1 : 0);
        EXPECT_EQ(f.box.Count("rror") + f.box.Count("No folders") + f.box.Count("retrieved"), 0);
        EXPECT_TRUE(!vanished || f.Everything() == then) << "deleted after the end";
        EXPECT_LE(late, 3) << "asked on and on";
        if (in_run) f.Expect_Nothing_Else();
        EXPECT_TRUE(!closed || (!in_run && number < 10));
        if (closed) continue;
        EXPECT_EQ(f.window.cmdRun.Caption(), "&Clean");
        EXPECT_TRUE(f.window.chkTurbo.Enabled());
        EXPECT_FALSE(f.window.frmMessageBox.Visible());
        EXPECT_EQ(f.window.sbStatusBar.Panel_Text(1), "");
        for (int node = 1; node <= f.tree.Upper_Bound(); ++node)
          EXPECT_TRUE(!f.tree.Exists(node) || f.tree.Text(node).find("<<<<") == std::string::npos);
        if (!vanished) f.plan.Forget_Faults();
        f.window.mnuRefreshCurrent.Click();
        EXPECT_EQ(f.box.Count(gone), vanished ? 2 : 0) << "the next command says it again";
        f.plan.Forget_Faults();
        f.window.mnuRefresh.Click();
        f.Expect_Agreement();
      }
}

// At every yield of the run something is taken, moved or added.
TEST(Faults, Another_Program_In_The_Same_Store_Never_Costs_A_Neighbour) {
  for (const Kind_Of_Run& way : ways)
    for (std::uint32_t seed = 1; seed <= 20 && !HasFailure(); ++seed) {
      SCOPED_TRACE(way.name + " " + std::to_string(seed));
      Kind_Run f(way, way == "turbo" ? 60 : 4);
      std::mt19937 random(seed);
      const auto one_of = [&](std::int32_t count) {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(count));
      };
      std::set<std::string> touched, moved;
      std::function<void()> act = [&] {
        f.events.At_Yield(f.events.Yields() + 1, act);
        const std::string status = f.window.sbStatusBar.Panel_Text(1);
        const auto of = [&](const char* name) { return status.find(name) != std::string::npos; };
        // Turbo takes what is in a folder when it begins there, Delete Folders also what comes later.
        if (!f.app.phase.Processing() || (way == "turbo" && !of("Cleaning"))) return;
        int any = way == "folders" ? 0 : one_of(3);
        if (way == "turbo") any = of("Inbox") ? 0 : of("Old") ? 1 : 2;
        const std::string source = any == 0 ? "Inbox" : any == 1 ? "Old" : "Old/Deep";
        if (one_of(2) == 0) {
          const std::string id = f.Add(source, "unread and new");
          f.before[id] = f.expected[id] = "/" + source;
        }
        const Items_Ptr items = f.Folder(source)->Items();
        if (items->Count() == 0 || one_of(2) == 0) return;
        const std::int32_t at = 1 + one_of(items->Count());
        const std::string id = items->Item(at)->EntryID();
        touched.insert("STORE1 " + id);
        one_of(2) == 0 ? items->Remove(at) : f.outlook.Store(1).Move_Item(id, *f.Folder("Projects"));
        if (f.Everything()["STORE1 " + id] == "/Projects") moved.insert("STORE1 " + id);
      };
      f.events.At_Yield(1, act);
      f.Run();
      f.Expect_Nothing_Else(touched);
      for (const std::string& id : moved) EXPECT_EQ(f.Everything()[id], "/Projects") << id;
      f.window.mnuRefresh.Click();
      f.Expect_Agreement();
    }
}

// In every yield and box of loading, of the run, and of loading afterwards.
TEST(Faults, Commands_That_Come_In_Between_Wait_Or_End_The_Run_At_Once) {
  enum Command { Clean, Refresh, Refresh_Current, Quit, Close, System_Ends };
  for (const Kind_Of_Run& way : ways)
    for (int place = 0; place < 12; ++place)
      for (int number = 1, met = 1; met == 1 && !HasFailure(); ++number) {
        const bool in_box = place % 2 == 1;
        SCOPED_TRACE(way.name + (in_box ? " box " : " yield ") + std::to_string(place / 2) + " at " +
                     std::to_string(number));
        Kind_Run f(way);
        met = 0;
        std::size_t boxes = 0;
        const std::function<void()> commands[] = {
            f.window.cmdRun.Click,  f.window.mnuRefresh.Click,     f.window.mnuRefreshCurrent.Click,
            f.window.mnuQuit.Click, f.window.frmRemoveItems.Close, [&] { f.app.End_With_System(); }};
        const auto act = [&] {
          if (std::exchange(met, 1) == 1) return;
          const bool counted = f.box.Boxes().size() > 0 &&
                               f.box.Boxes().back().text.find(" identified for ") != std::string::npos;
          const int runs = f.box.Count(" identified for ");
          // What only Refresh Current can bring into the grid.
          if (place / 2 == Refresh_Current && way == "cached" && f.tree.Selected_Item() > 1)
            f.Add(f.Path(f.tree.Selected_Item()).substr(1), "unread");
          const std::size_t asked = f.box.Boxes().size();
          commands[place / 2]();
          EXPECT_TRUE(place / 2 != System_Ends || f.box.Boxes().size() == asked) << "asked at the very end";
          EXPECT_TRUE(!in_box || !counted || f.box.Count(" identified for ") == runs)
              << "a run in a run's question";
          // Nothing goes any more once the run is cancelled or the window closed.
          if (!f.window.frmRemoveItems.Loaded() || f.box.Count("Quit processing") == 1)
            f.expected = f.Everything();
          boxes = f.box.Boxes().size();
        };
        if (!in_box) f.events.At_Yield(number, act);
        f.box.on_box = [&](int shown) {
          if (in_box && shown == number) act();
        };
        f.Run();
        const bool closed = !f.window.frmRemoveItems.Loaded();
        EXPECT_EQ(closed, met == 1 && place / 2 >= Quit);
        if (closed || f.app.run.Cancelled) {
          EXPECT_EQ(f.Everything(), f.expected) << "deleted after the end";
        } else {
          f.Expect_Nothing_Else();
        }
        if (!closed) f.Expect_Agreement();
        EXPECT_TRUE(!closed || f.box.Boxes().size() == boxes) << "asked after the end";
      }
}

}  // namespace tidyfold
