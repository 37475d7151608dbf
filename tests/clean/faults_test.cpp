// Whole runs while store calls fail, other programs work in the same store, and commands come in every yield
// and box: a run ends, its counts add up, and nothing goes that was not chosen.
#include <random>

#include "clean/run_fixture.h"

namespace tidyfold {

namespace {

struct Way {
  const char *before, *after;  // options that are set before and after the folders are ticked
  bool live;                   // Clean is pressed while the first folder is being read
};

const Way cached = {"", "", false}, permanent = {"PermanentDelete", "", false},
          confirmed = {"ConfirmFolders ConfirmItems", "", false}, live = {"", "", true},
          turbo = {"Turbo", "", false}, rows = {"ShowAllFolders", "SelectByRow", false},
          folders = {"DeleteFolders", "", false};

struct Way_Run : Run_Fixture {
  const Way way;
  std::function<void()> before_run;  // the last moment before Clean is pressed

  explicit Way_Run(const Way& the_way, int copies = 1) : way(the_way) {
    for (const char* path : {"Deleted Items", "Inbox", "Old", "Old/Deep", "Projects"})
      for (int number = 1; number <= 4 * copies; ++number) {
        New_Item item;
        item.unread = number % 4 == 3;
        Put(path, 1, item);
      }
    expected = before = Everything();
    box.Answer_Anything();
  }
  void Run() {
    const auto clean = [this] {
      if (!window.frmRemoveItems.Loaded()) return;
      Set(way.before);
      for (const char* path : {"Inbox", "Old/Deep", "Old"}) Tick(path);
      Set(way.after);
      if (!window.frmRemoveItems.Loaded()) return;
      Foresee();
      if (before_run) before_run();
      window.cmdRun.Click();
    };
    if (way.live)
      events.When([this] { return window.sbStatusBar.Panel_Text(1).starts_with("Loading"); }, clean);
    app.Form_Load();
    if (!way.live) clean();
    events.Forget_Waiting();
  }

  // `touched` are items that another program has moved or taken away.
  void Expect_Nothing_Else(const std::set<std::string>& touched = {}) {
    EXPECT_FALSE(app.Run().Processing);
    const Contents after = Everything();
    int done = 0, left = 0;
    for (const auto& [id, path] : before) {
      if (touched.contains(id)) continue;
      const std::string now = after.contains(id) ? after.at(id) : "-";
      const std::string wanted = expected.contains(id) ? expected.at(id) : "-";
      if (wanted == path) {
        EXPECT_EQ(now, path) << id << " was not chosen";
      } else if (items.contains(id)) {
        ++(now == wanted ? done : left);
      }
    }
    const bool one_run = box.Count(" identified for ") == 1 && way.before != folders.before;
    EXPECT_TRUE(!one_run || (app.Run().ProcessedCount >= done &&
                             app.Run().ProcessedCount <= done + static_cast<int>(touched.size())));
    const bool summed_up = box.Count("item was ") + box.Count("items were ") > 0 && !app.Run().Cancelled;
    EXPECT_TRUE(!summed_up || left == 0 || box.Count("Not all items could be deleted") == 1) << left;
  }
};

}  // namespace

TEST(Faults, A_Call_That_Fails_Costs_What_It_Was_About_And_No_More) {
  int met = 0;
  for (const Way& way : {cached, permanent, confirmed, live, turbo, rows, folders})
    for (const char* member :
         {"NameSpace.GetItemFromID", "Items.Count", "Items.Item", "Items.Remove", "Folders.Count",
          "Folders.Item", "Folders.Remove", "MAPIFolder.Name", "MAPIFolder.EntryID", "MAPIFolder.StoreID",
          "MAPIFolder.Items", "MAPIFolder.Folders", "MAPIFolder.Parent", "Item.Subject", "Item.Class",
          "Item.EntryID", "Item.ReceivedTime", "Item.Parent", "Item.Delete"})
      for (int number = 0, thrown = 1; thrown > 0 || number == 1; ++number) {  // 0: always
        SCOPED_TRACE(way.before + std::string(way.live ? " live " : " ") + member + std::to_string(number));
        Way_Run f(way);
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
        EXPECT_TRUE(!f.app.Run().NotAllDeleted || f.box.Count("it fails") > 0) << "said without a reason";
        f.window.mnuRefresh.Click();
        f.Expect_Agreement();
        if (HasFailure()) return;
      }
  EXPECT_GT(met, 500);
}

// At every yield of the run something is taken, moved or added.
TEST(Faults, Another_Program_In_The_Same_Store_Never_Costs_A_Neighbour) {
  for (const Way& way : {cached, permanent, confirmed, live, turbo, rows, folders})
    for (std::uint32_t seed = 1; seed <= 20 && !HasFailure(); ++seed) {
      SCOPED_TRACE(way.before + std::string(way.live ? " live " : " ") + std::to_string(seed));
      const bool by_position = way.before == turbo.before, whole = way.before == folders.before;
      Way_Run f(way, by_position ? 60 : 4);
      std::mt19937 random(seed);
      std::set<std::string> touched, moved;
      std::function<void()> act = [&] {
        f.events.At_Yield(f.events.Yields() + 1, act);
        const std::string status = f.window.sbStatusBar.Panel_Text(1);
        // Turbo takes what is in the folder when it begins, Delete Folders also what comes later.
        if (!f.app.Run().Processing || (by_position && !status.starts_with("Cleaning"))) return;
        const auto of = [&](const char* name) { return status.find(name) != std::string::npos; };
        const auto any = whole         ? 0
                         : by_position ? (of("Inbox") ? 0
                                          : of("Old") ? 1
                                                      : 2)
                                       : static_cast<int>(random() % 3);
        const std::string source = any == 0 ? "Inbox" : any == 1 ? "Old" : "Old/Deep";
        if (random() % 2 == 0) {
          const std::string id = "STORE1 " + f.Add(source, "new", true);
          f.before[id] = f.expected[id] = "/" + source;
        }
        const Items_Ptr items = f.Folder(source)->Items();
        if (items->Count() == 0 || random() % 2 == 0) return;
        const auto at = static_cast<std::int32_t>(1 + random() % static_cast<std::uint32_t>(items->Count()));
        const std::string id = items->Item(at)->EntryID();
        touched.insert("STORE1 " + id);
        random() % 2 == 0 ? items->Remove(at) : f.outlook.Store(1).Move_Item(id, *f.Folder("Projects"));
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

// Of loading, of the run, and of loading afterwards.
TEST(Faults, Commands_That_Come_In_Between_Wait_Or_End_The_Run_At_Once) {
  const std::function<void(MainWindow&)> commands[] = {
      [](MainWindow& w) { w.cmdRun.Click(); }, [](MainWindow& w) { w.mnuRefresh.Click(); },
      [](MainWindow& w) { w.mnuRefreshCurrent.Click(); }, [](MainWindow& w) { w.mnuQuit.Click(); },
      [](MainWindow& w) { w.frmRemoveItems.Close(); }};
  for (const Way& way : {cached, confirmed, live, turbo, rows, folders})
    for (int place = 0; place < 10; ++place)
      for (int number = 1, met = 1; met == 1; ++number) {
        SCOPED_TRACE(way.before +
                     std::string(way.live ? " live, command and place " : ", command and place ") +
                     std::to_string(place) + " at " + std::to_string(number));
        Way_Run f(way);
        met = 0;
        std::size_t boxes = 0;
        const auto act = [&] {
          if (std::exchange(met, 1) == 1) return;
          commands[place / 2](f.window);
          // Nothing goes any more once the run is cancelled or the window closed.
          const bool ended = !f.window.frmRemoveItems.Loaded() || f.box.Count("Quit processing") == 1;
          if (ended) f.expected = f.Everything();
          boxes = f.box.Boxes().size();
        };
        const bool in_box = place % 2 == 1;
        if (!in_box) f.events.At_Yield(number, act);
        f.box.on_box = [&](int shown) {
          if (in_box && shown == number) act();
        };
        f.Run();
        const bool closed = !f.window.frmRemoveItems.Loaded();
        EXPECT_EQ(closed, met == 1 && place >= 6);
        if (closed || f.app.Run().Cancelled) {
          EXPECT_EQ(f.Everything(), f.expected) << "deleted after the end";
        } else {
          f.Expect_Nothing_Else();
        }
        if (!closed) f.Expect_Agreement();
        EXPECT_TRUE(!closed || f.box.Boxes().size() == boxes) << "asked after the end";
        if (HasFailure()) return;
      }
}

}  // namespace tidyfold
