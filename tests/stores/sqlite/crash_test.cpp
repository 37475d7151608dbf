#include "stores/sqlite/fault_vfs.h"
#include "stores/sqlite/other_process.h"
#include "stores/sqlite/temporary_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

class Crash : public Store_File {
 protected:
  // Works on the store in another process, which is then killed.
  void In_Crash(int items, const std::function<void(Embedded_Store& store)>& work) {
    Make_Small_Store(file_, items);
    EXPECT_EQ(In_Killed_Process([&] { return work(Left_Open(Open())), 0; }), 0);
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
    });
    Expect_Kept(Numbers(1, c.left), c.left == 300 ? "" : Numbers(300, c.left + 1, -1));
  }
}

// The disk is full when the log is written back: the file then has pages of before and after.
TEST_F(Crash, A_Log_That_Was_Not_Written_Back_To_Its_End_Is_Part_Of_The_Store) {
  Make_Small_Store(file_, 300);
  {
    Fault_Vfs disk(".tfs");
    const auto store = Open();
    const auto inbox = Folder_Named(*store, "Inbox");
    disk.Fail_Growing();
    for (int number = 301; number <= 900; ++number) {
      New_Item item;
      item.subject = std::to_string(number);
      store->Writer().Add_Item(*inbox, item);
    }
    store->Commit_Pending();
  }
  for (const Store_Mode mode : {Store_Mode::Read_Only, Store_Mode::Read_Write}) {
    const auto store = Open(mode);
    EXPECT_EQ(store->Check(), std::vector<std::string>());
    EXPECT_EQ(Folder_Named(*store, "Inbox")->Items()->Count(), 900);
  }
}

// A folder's items are cleared away in pieces; what a crash leaves of them is never seen again.
TEST_F(Crash, A_Removed_Folder_Does_Not_Come_Back) {
  In_Crash(20000, [](Embedded_Store& store) {
    const auto folders = store.Top_Folder()->Folders();
    MAPIFolder_Ptr deep = folders->Item(1);
    for (int depth = 0; depth < 1000; ++depth) deep = store.Writer().Add_Folder(*deep, "Below", 0);
    deep.reset();
    while (folders->Count() > 0) folders->Remove(1);
    store.Commit_Pending();
  });
  EXPECT_EQ(Open(Store_Mode::Read_Only)->Check(), std::vector<std::string>());
  EXPECT_EQ(Open()->Top_Folder()->Folders()->Count(), 0);
  EXPECT_EQ(Number_By_Sql(file_,
                          "SELECT (SELECT COUNT(*) FROM item) + (SELECT COUNT(*) FROM content) + (SELECT "
                          "COUNT(*) FROM attachment)"),
            0);
  EXPECT_EQ(Number_By_Sql(file_, "SELECT COUNT(*) FROM folder"), 1);
}

TEST_F(Crash, An_Import_Onto_A_Full_Disk_Fails_As_A_Whole) {
  Make_Small_Store(file_);
  Fault_Vfs disk;
  {
    const auto store = Open();
    const auto inbox = Folder_Named(*store, "Inbox");
    disk.Fail_Writing(1, SQLITE_FULL, ENOSPC);
    New_Item item;
    item.body = Incompressible(100000);
    store->Writer().Begin();
    std::int32_t error = 0;
    for (int i = 0; i < 1000 && error == 0; ++i)
      error = Error_Of([&] { store->Writer().Add_Item(*inbox, item); });
    EXPECT_EQ(error, automation_error::call_failed);
    disk.Repair();
    EXPECT_NE(Error_Of([&] { store->Writer().Commit(); }), 0) << "no half of it may slip in by a later call";
    store->Writer().Roll_Back();
    EXPECT_EQ(Subjects_Of(*store, "Inbox"), "1 2 3");
  }
  Expect_Kept("1 2 3");
}

}  // namespace
}  // namespace tidyfold
