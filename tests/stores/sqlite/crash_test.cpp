#include <signal.h>
#include <sys/resource.h>

#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/other_process.h"
#include "stores/sqlite/temporary_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

class Crash : public Store_File {
 protected:
  // Works on the store in another process, which is then killed. The work says which of its steps failed.
  void In_Crash(int items, const std::function<int(Embedded_Store& store)>& work) {
    Make_Small_Store(file_, items);
    EXPECT_EQ(In_Killed_Process([&] { return work(Left_Open(Open())); }), 0);
  }
};

TEST_F(Crash, Leaves_Every_Item_Where_It_Was_Or_Where_It_Was_Going) {
  const struct {
    int deletions;
    bool commit;
    int left;
  } cases[] = {{5, false, 300}, {5, true, 295}, {100, false, 300}, {101, false, 200}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.deletions);
    std::filesystem::remove(file_);
    In_Crash(300, [&](Embedded_Store& store) {
      const auto items = Folder_Named(store, "Inbox")->Items();
      for (int i = 0; i < c.deletions; ++i) items->Item(items->Count())->Delete();
      if (c.commit) store.Commit_Pending();
      return 0;
    });
    Expect_Kept(Numbers(1, c.left), c.left == 300 ? "" : Numbers(300, c.left + 1, -1));
  }
}

TEST_F(Crash, An_Unfinished_Import_Has_Not_Happened) {
  In_Crash(3, [](Embedded_Store& store) {
    store.Writer().Begin();
    const auto folder = store.Writer().Add_Folder(*store.Top_Folder(), "New", 0);
    New_Item item;
    item.body = std::string(1000, 'x');
    for (int i = 0; i < 10000; ++i) store.Writer().Add_Item(*folder, item);
    store.Commit_Pending();
    return 0;
  });
  Expect_Kept("1 2 3");
  EXPECT_EQ(Open()->Top_Folder()->Folders()->Count(), 10);
}

// A folder's items are cleared away in pieces; what a crash leaves of them is never seen again.
TEST_F(Crash, A_Removed_Folder_Does_Not_Come_Back) {
  In_Crash(20000, [](Embedded_Store& store) {
    const auto folders = store.Top_Folder()->Folders();
    while (folders->Count() > 0) folders->Remove(1);
    store.Commit_Pending();
    return 0;
  });
  EXPECT_EQ(Open(Store_Mode::Read_Only)->Check(), std::vector<std::string>());
  Embedded_Outlook outlook;
  outlook.Open({file_});
  const auto session = outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
  EXPECT_EQ(session->Folders()->Item(1)->Folders()->Count(), 0);
  EXPECT_EQ(Error_Of([&] { session->GetItemFromID("I1", outlook.Stores()[0]->StoreID()); }),
            automation_error::not_found);
  outlook.Replace({});
  EXPECT_EQ(Number_By_Sql(file_, "SELECT (SELECT COUNT(*) FROM item) + (SELECT COUNT(*) FROM content)"), 0);
  EXPECT_EQ(Number_By_Sql(file_, "SELECT COUNT(*) FROM folder"), 1);
}

// No file of the process may grow: the same failure as a disk that is full, at whatever call it comes.
void Fill_Disk(const std::filesystem::path& file) {
  signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{std::filesystem::file_size(file) + 8192, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &limit);
}

// Wherever the failure shows, what the store says afterwards is what the file says.
TEST_F(Crash, Deletions_That_A_Full_Disk_Did_Not_Keep_Are_Reported_And_Undone) {
  In_Crash(3000, [&](Embedded_Store& store) {
    const auto items = Folder_Named(store, "Inbox")->Items();
    const auto deleted = Folder_Named(store, "Deleted Items")->Items();
    const Item_Ptr last = items->Item(items->Count());
    Fill_Disk(file_);
    std::int32_t error = 0;
    while (items->Count() > 0 && error == 0) error = Error_Of([&] { items->Item(items->Count())->Delete(); });
    if (error != automation_error::call_failed) return 1;
    if (items->Count() + deleted->Count() != 3000 || items->Count() % 100 != 0) return 2;
    if (items->Item(items->Count())->Subject() != std::to_string(items->Count())) return 3;
    return last->Parent()->Name() == (deleted->Count() > 0 ? "Deleted Items" : "Inbox") ? 0 : 4;
  });
  const int left = Folder_Named(*Open(), "Inbox")->Items()->Count();
  EXPECT_LT(left, 3000);
  Expect_Kept(Numbers(1, left), Numbers(3000, left + 1, -1));
}

TEST_F(Crash, An_Import_Onto_A_Full_Disk_Fails_As_A_Whole) {
  In_Crash(3, [&](Embedded_Store& store) {
    const auto inbox = Folder_Named(store, "Inbox");
    Fill_Disk(file_);
    New_Item item;
    item.body = std::string(100000, 'x');
    store.Writer().Begin();
    std::int32_t error = 0;
    for (int i = 0; i < 1000 && error == 0; ++i)
      error = Error_Of([&] { store.Writer().Add_Item(*inbox, item); });
    if (error == 0) error = Error_Of([&] { store.Writer().Commit(); });
    if (error != automation_error::call_failed) return 1;
    // No half of it may slip in by a later call.
    if (Error_Of([&] { store.Writer().Commit(); }) == 0) return 2;
    store.Writer().Roll_Back();
    return Subjects_Of(store, "Inbox") == "1 2 3" ? 0 : 3;
  });
  Expect_Kept("1 2 3");
}

}  // namespace
}  // namespace tidyfold
