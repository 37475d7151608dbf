// Runs of each kind on a Maildir that another program delivers into, marks and clears at the same time.
#include <random>
#include <set>

#include "app/window_fixture.h"
#include "outlook/store_session.h"
#include "stores/maildir/mail_program.h"
#include "stores/maildir/maildir_store.h"

namespace tidyfold {

namespace {

struct Maildir_Run : Test_Surroundings {
  Temporary_Directory directory;
  Mail_Program other{directory / "Mail"};
  Store_Session outlook{nullptr};
  MainWindow window;
  App app{window, Around(outlook)};
  std::mt19937 random;
  std::map<std::string, std::string> lay_in;  // by unique name
  std::set<std::string> kept, gone;           // what the other program had a hand in, before it was taken

  explicit Maildir_Run(std::uint32_t seed) : random(seed) {
    for (const char* folder : {"", ".Old", ".Old.Deep", ".Trash"}) other.Make_Folder(folder);
    for (int number = 0; number < 80; ++number)
      for (const char* folder : {"", ".Old", ".Old.Deep"})
        lay_in[other.Deliver(folder, "mail " + std::to_string(number))] = folder;
    Store_Address address(other.Top());
    address.kind = Store_Address::Kind::Maildir;
    outlook.Add(Maildir_Store::Open(address, {.cache_folder = directory / "cache"}));
    box.Answer_Anything();
    app.Form_Load();
  }
  int Node(const std::string& name) {
    for (int node = 1; node <= window.trvFolders.Upper_Bound(); ++node)
      if (window.trvFolders.Exists(node) && app.records[node].FolderName == name) return node;
    throw std::invalid_argument(name);
  }
  std::string Folder_Of(const std::string& unique) {
    const std::filesystem::path file = other.Find(unique);
    if (file.empty()) return "gone";
    const auto folder = std::filesystem::relative(file.parent_path().parent_path(), other.Top()).string();
    return folder == "." ? "" : folder;
  }
  // With mail that still lies where it lay.
  void Meddle() {
    const std::string mail = std::next(lay_in.begin(), static_cast<int>(random() % lay_in.size()))->first;
    if (Folder_Of(mail) != lay_in[mail] || kept.contains(mail)) return;
    switch (random() % 5) {
      case 0:
        return other.Mark(mail, "FS"), void(kept.insert(mail));
      case 1:
        return other.Mark(mail, ""), void(kept.insert(mail));
      case 2:
        return other.Mark(mail, "RS");
      case 3:
        return other.Delete(mail), void(gone.insert(mail));
      default:
        kept.insert(other.Deliver(lay_in[mail], "new", "new"));
    }
  }
  void Run(const std::string& kind) {
    TreeView& tree = window.trvFolders;
    if (kind == "permanent" || kind == "live for good") window.chkPermanentDelete.Set_Value(1);
    window.chkShowAllFolders.Set_Value(1);
    for (const char* name : {"Inbox", "Old", "Deep"}) tree.Tick(Node(name), true), tree.MouseUp();
    if (kind == "rows") window.chkSelectByRow.Set_Value(1), window.mnuSelectAllRows.Click();
    if (kind.starts_with("live")) app.records[Node("Old")].Loaded = false;
    std::function<void()> next = [&] {
      events.At_Yield(events.Yields() + 3, next);
      Meddle();
      if (random() % 8 == 0) outlook.Commit_Pending();
    };
    events.At_Yield(events.Yields() + 3, next);
    window.cmdRun.Click();
    events.Forget_Waiting();
    outlook.Commit_Pending();
  }
};

}  // namespace

TEST(Maildir_Cleaning, Takes_What_Was_Shown_And_Nothing_That_Others_Have_Touched) {
  for (const std::string kind : {"cached", "permanent", "rows", "live", "live for good"}) {
    for (std::uint32_t seed = 1; seed <= 2; ++seed) {
      SCOPED_TRACE(kind + " " + std::to_string(seed));
      Maildir_Run f(seed);
      f.Run(kind);
      const bool for_good = kind == "permanent" || kind == "live for good";
      int taken = 0;
      for (const auto& [mail, folder] : f.lay_in) {
        if (f.kept.contains(mail)) {
          EXPECT_EQ(f.Folder_Of(mail), folder) << mail;
        } else if (f.gone.contains(mail)) {
          EXPECT_EQ(f.Folder_Of(mail), "gone") << mail;
        } else {
          ++taken;
          EXPECT_EQ(f.Folder_Of(mail), for_good ? "gone" : ".Trash") << mail;
        }
      }
      for (const std::string& mail : f.kept) EXPECT_NE(f.Folder_Of(mail), "gone");
      EXPECT_GT(taken, 100);
      EXPECT_GT(f.kept.size() + f.gone.size(), 10U);
      EXPECT_EQ(f.app.run.ProcessedCount, taken);
      int logged = 0;
      f.log.Items(f.log.Runs().front().run, [&](const Logged_Item& item) {
        if (item.result != Item_Result::Done) return;
        ++logged;
        EXPECT_FALSE(f.kept.contains(item.entry_id.substr(1))) << item.entry_id;
      });
      EXPECT_EQ(logged, taken);
    }
  }
}

// Turbo takes everything that was counted; what arrives meanwhile was not.
TEST(Maildir_Cleaning, Turbo_And_Whole_Folders) {
  Maildir_Run f(1);
  TreeView& tree = f.window.trvFolders;
  f.window.chkTurbo.Set_Value(1);
  tree.Tick(f.Node("Old"), true), tree.MouseUp();
  std::string late;
  f.events.At_Yield(f.events.Yields() + 1, [&] { late = f.other.Deliver(".Old", "late"); });
  f.window.cmdRun.Click();
  f.events.Forget_Waiting();
  f.outlook.Commit_Pending();
  EXPECT_EQ(f.app.run.ProcessedCount, 80);
  for (const auto& [mail, folder] : f.lay_in)
    EXPECT_EQ(f.Folder_Of(mail), folder == ".Old" ? "gone" : folder);
  EXPECT_EQ(f.Folder_Of(late), ".Old");
  f.window.chkDeleteFolders.Set_Value(1);
  tree.Tick(f.Node("Old"), true), tree.MouseUp();
  tree.Tick(f.Node("Deep"), true), tree.MouseUp();
  f.window.cmdRun.Click();
  EXPECT_FALSE(std::filesystem::exists(f.other.Top() / ".Old"));
  EXPECT_FALSE(std::filesystem::exists(f.other.Top() / ".Old.Deep"));
  for (const auto& [mail, folder] : f.lay_in) EXPECT_EQ(f.Folder_Of(mail), folder.empty() ? "" : "gone");
}

}  // namespace tidyfold
