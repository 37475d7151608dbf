// Runs of each kind on a disk that fills at some moment: what is counted, logged, shown and stored agrees.
#include <random>

#include "app/window_fixture.h"
#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/fault_vfs.h"

namespace tidyfold {

namespace {

// A program on a store file. Yields keep what was changed, as those of the front ends do.
struct Filed_Program : Test_Surroundings {
  Fault_Vfs disk;
  Embedded_Outlook outlook;
  MainWindow window;
  App app{window, Around(outlook)};

  explicit Filed_Program(const std::filesystem::path& file) {
    outlook.Open({file});
    box.Answer_Anything();
    app.Form_Load();
  }
  // The folder of every item, and every folder by its own name.
  std::map<std::string, std::string> Everything() {
    std::map<std::string, std::string> all;
    const std::function<void(MAPIFolder&)> collect = [&](MAPIFolder& folder) {
      all["folder " + folder.Name()] = folder.Name();
      const Items_Ptr items = folder.Items();
      for (std::int32_t i = items->Count(); i >= 1; --i) all[items->Item(i)->EntryID()] = folder.Name();
      const Folders_Ptr below = folder.Folders();
      for (std::int32_t i = below->Count(); i >= 1; --i) collect(*below->Item(i));
    };
    collect(*outlook.Stores().front()->Top_Folder());
    return all;
  }
  int Folder(const std::string& name) {
    for (int node = 1; node <= window.trvFolders.Upper_Bound(); ++node)
      if (window.trvFolders.Exists(node) && app.records[node].FolderName == name) return node;
    throw std::invalid_argument(name);
  }
  void Run(const std::string& kind) {
    TreeView& tree = window.trvFolders;
    if (kind == "permanent") window.chkPermanentDelete.Set_Value(1);
    if (kind == "turbo") window.chkTurbo.Set_Value(1);
    if (kind == "folders") window.chkDeleteFolders.Set_Value(1);
    window.chkShowAllFolders.Set_Value(1);
    for (const char* name : {"Deep", "Old", "New"}) tree.Tick(Folder(name), true), tree.MouseUp();
    if (kind == "rows") window.chkSelectByRow.Set_Value(1), window.mnuSelectAllRows.Click();
    if (kind == "live") app.records[Folder("Old")].Loaded = false;
    std::function<void()> keep = [&] {
      events.At_Yield(events.Yields() + 37, keep);
      outlook.Commit_Pending();
    };
    events.At_Yield(events.Yields() + 37, keep);
    window.cmdRun.Click();
    events.Forget_Waiting();
  }
};

void Make_Store(const std::filesystem::path& file) {
  const auto store = Embedded_Store::Create(file, "Personal");
  Store_Writer& writer = store->Writer();
  writer.Begin();
  const MAPIFolder_Ptr old = writer.Add_Folder(*store->Top_Folder(), "Old", item_type::mail);
  const MAPIFolder_Ptr folders[] = {old, writer.Add_Folder(*old, "Deep", item_type::mail),
                                    writer.Add_Folder(*store->Top_Folder(), "New", item_type::mail)};
  New_Item item;
  item.received = 40000;
  item.body = std::string(300, 'x');
  for (int i = 0; i < 450; ++i) {
    item.subject = std::to_string(i);
    writer.Add_Item(*folders[i % 3], item);
  }
  writer.Commit();
}

}  // namespace

TEST(Disk_Full, What_Is_Counted_Is_What_Was_Kept) {
  const Temporary_Directory directory;
  const auto original = directory / "original", file = directory / "a.tidyfold";
  Make_Store(original);
  int cut_short = 0;
  for (const std::string kind : {"cached", "permanent", "rows", "live", "turbo", "folders"}) {
    for (std::uint32_t seed = 1; seed <= 30 && !testing::Test::HasFailure(); ++seed) {
      SCOPED_TRACE(kind + " " + std::to_string(seed));
      // MinGW's library refuses to overwrite.
      std::filesystem::remove(file);
      std::filesystem::copy_file(original, file);
      std::map<std::string, std::string> kept;
      {
        Filed_Program f(file);
        const auto before = f.Everything();
        std::mt19937 random(seed);
        f.disk.Fail_Writing(1 + static_cast<int>(random() % 120), SQLITE_FULL, ENOSPC);
        f.Run(kind);
        f.disk.Repair();
        kept = f.Everything();
        int items = 0, folders = 0;
        const bool for_good = kind == "permanent" || kind == "turbo" || kind == "folders";
        for (const auto& [id, name] : before) {
          const bool folder = id.starts_with("folder ");
          const bool done = for_good || folder ? !kept.contains(id) : kept.at(id) != name;
          (folder ? folders : items) += done ? 1 : 0;
        }
        const int truth = kind == "folders" ? folders : items;
        EXPECT_EQ(f.app.run.ProcessedCount, truth);
        EXPECT_EQ(f.app.run.NotAllDeleted, kind == "folders" ? folders < 3 : items < 450);
        cut_short += f.app.run.NotAllDeleted ? 1 : 0;
        // What is shown is what is there.
        f.window.mnuStopLoading.Click();
        int shown = 0;
        for (int node = 1; node <= f.window.trvFolders.Upper_Bound(); ++node) {
          if (!f.window.trvFolders.Exists(node)) continue;
          const FolderData& record = f.app.records[node];
          EXPECT_EQ(f.window.trvFolders.Text(node).find("<<<<"), std::string::npos);
          if (record.Folder == nullptr || !record.Loaded) continue;
          ASSERT_EQ(record.CachedCount, record.Folder->Items()->Count()) << record.FolderName;
          for (std::int32_t i = 1; i <= record.CachedCount; ++i)
            EXPECT_EQ(record.Cached(i).EntryID, record.Folder->Items()->Item(i)->EntryID());
          if (f.window.trvFolders.Checked(node)) shown += record.CachedCount;
        }
        EXPECT_EQ(f.window.grdItems.Rows() - 1, shown);
        // What the log calls done has been done.
        if (const auto runs = f.log.Runs(); !runs.empty()) {
          f.log.Items(runs.front().run, [&](const Logged_Item& item) {
            if (item.result != Item_Result::Done) return;
            const bool folder = item.action == Item_Action::Folder_Deleted;
            const std::string id = folder ? "folder " + item.subject : item.entry_id;
            EXPECT_TRUE(!kept.contains(id) || kept.at(id) != before.at(id)) << id;
          });
        }
      }
      Filed_Program again(file);
      EXPECT_EQ(again.Everything(), kept) << "what the file holds";
    }
  }
  EXPECT_GT(cut_short, 60) << "the disk was too large";
}

}  // namespace tidyfold
