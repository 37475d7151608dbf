#include <signal.h>
#include <sys/resource.h>

#include <vector>

#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/other_process.h"
#include "stores/sqlite/temporary_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

std::string Numbers(int first, int last, int step) {
  std::string all = std::to_string(first);
  for (int number = first + step; number != last + step; number += step) all += " " + std::to_string(number);
  return all;
}

// Kept until the process is killed.
std::shared_ptr<Embedded_Store> open_store;

struct Crash {
  const char* name;
  int deletions;
  bool commit;
  std::string left, moved;
};

class Crashes : public testing::TestWithParam<Crash> {};

TEST_P(Crashes, Leave_Every_Item_Where_It_Was_Or_Where_It_Was_Going) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Add_Numbered(*Embedded_Store::Create(file, "A"), "Inbox", 300);
  EXPECT_EQ(In_Killed_Process([&] {
              open_store = Embedded_Store::Open(file, Store_Mode::Read_Write);
              const auto items = Folder_Named(*open_store, "Inbox")->Items();
              for (int i = 0; i < GetParam().deletions; ++i) items->Item(items->Count())->Delete();
              if (GetParam().commit) open_store->Commit_Pending();
              return 1;
            }),
            1);
  const auto store = Embedded_Store::Open(file, Store_Mode::Read_Write);
  EXPECT_EQ(Subjects_Of(*store, "Inbox"), GetParam().left);
  EXPECT_EQ(Subjects_Of(*store, "Deleted Items"), GetParam().moved);
  EXPECT_EQ(store->Check(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    Stores, Crashes,
    testing::Values(Crash{"Nothing_Committed", 5, false, Numbers(1, 300, 1), ""},
                    Crash{"All_Committed", 5, true, Numbers(1, 295, 1), Numbers(300, 296, -1)},
                    Crash{"The_Group_Is_Full", 100, false, Numbers(1, 300, 1), ""},
                    Crash{"In_The_Second_Group", 101, false, Numbers(1, 200, 1), Numbers(300, 201, -1)}),
    [](const auto& one) { return one.param.name; });

TEST(Crash, An_Unfinished_Import_Has_Not_Happened) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Make_Small_Store(file);
  EXPECT_EQ(In_Killed_Process([&] {
              open_store = Embedded_Store::Open(file, Store_Mode::Read_Write);
              open_store->Writer().Begin();
              const auto folder = open_store->Writer().Add_Folder(*open_store->Top_Folder(), "New", 0);
              New_Item item;
              item.body = std::string(1000, 'x');
              for (int i = 0; i < 10000; ++i) open_store->Writer().Add_Item(*folder, item);
              open_store->Commit_Pending();
              return 1;
            }),
            1);
  const auto store = Embedded_Store::Open(file, Store_Mode::Read_Write);
  EXPECT_EQ(store->Top_Folder()->Folders()->Count(), 10);
  EXPECT_EQ(Subjects_Of(*store, "Inbox"), "1 2 3");
  EXPECT_EQ(store->Check(), std::vector<std::string>());
}

// A folder's items are cleared away in pieces; what a crash leaves of them is never seen again.
TEST(Crash, A_Removed_Folder_Does_Not_Come_Back) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Add_Numbered(*Embedded_Store::Create(file, "A"), "Inbox", 20000);
  EXPECT_EQ(In_Killed_Process([&] {
              open_store = Embedded_Store::Open(file, Store_Mode::Read_Write);
              const auto folders = open_store->Top_Folder()->Folders();
              while (folders->Count() > 0) folders->Remove(1);
              open_store->Commit_Pending();
              return 1;
            }),
            1);
  EXPECT_EQ(Embedded_Store::Open(file, Store_Mode::Read_Only)->Check(), std::vector<std::string>());
  Embedded_Outlook outlook;
  outlook.Open({file});
  const auto session = outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
  EXPECT_EQ(session->Folders()->Item(1)->Folders()->Count(), 0);
  EXPECT_EQ(Error_Of([&] { session->GetItemFromID("I1", outlook.Stores()[0]->StoreID()); }),
            automation_error::not_found);
  outlook.Replace({});
  EXPECT_EQ(Number_By_Sql(file, "SELECT (SELECT COUNT(*) FROM item) + (SELECT COUNT(*) FROM content)"), 0);
  EXPECT_EQ(Number_By_Sql(file, "SELECT COUNT(*) FROM folder"), 1);
}

// No file of the process may grow: the same failure as a disk that is full, at whatever call it comes.
void Fill_Disk(const std::filesystem::path& file) {
  signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{std::filesystem::file_size(file) + 8192, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &limit);
}

// Wherever the failure shows, what the store says afterwards is what the file says.
TEST(Disk_Full, Deletions_That_Could_Not_Be_Kept_Are_Reported_And_Undone) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Add_Numbered(*Embedded_Store::Create(file, "A"), "Inbox", 3000);
  EXPECT_EQ(In_Killed_Process([&] {
              open_store = Embedded_Store::Open(file, Store_Mode::Read_Write);
              const auto items = Folder_Named(*open_store, "Inbox")->Items();
              const auto deleted = Folder_Named(*open_store, "Deleted Items")->Items();
              const Item_Ptr last = items->Item(items->Count());
              Fill_Disk(file);
              std::int32_t error = 0;
              while (items->Count() > 0 && error == 0) {
                error = Error_Of([&] { items->Item(items->Count())->Delete(); });
              }
              if (error != automation_error::call_failed) return 2;
              if (items->Count() + deleted->Count() != 3000 || items->Count() % 100 != 0) return 3;
              if (items->Item(items->Count())->Subject() != std::to_string(items->Count())) return 4;
              return last->Parent()->Name() == (deleted->Count() > 0 ? "Deleted Items" : "Inbox") ? 1 : 5;
            }),
            1);
  const auto store = Embedded_Store::Open(file, Store_Mode::Read_Write);
  const auto left = Folder_Named(*store, "Inbox")->Items()->Count();
  EXPECT_EQ(left + Folder_Named(*store, "Deleted Items")->Items()->Count(), 3000);
  EXPECT_LT(left, 3000);
  EXPECT_EQ(Subjects_Of(*store, "Inbox"), Numbers(1, left, 1));
  EXPECT_EQ(store->Check(), std::vector<std::string>());
}

TEST(Disk_Full, An_Import_Fails_As_A_Whole) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Make_Small_Store(file);
  EXPECT_EQ(In_Killed_Process([&] {
              open_store = Embedded_Store::Open(file, Store_Mode::Read_Write);
              auto& writer = open_store->Writer();
              const auto inbox = Folder_Named(*open_store, "Inbox");
              Fill_Disk(file);
              New_Item item;
              item.body = std::string(100000, 'x');
              writer.Begin();
              std::int32_t error = 0;
              for (int i = 0; i < 1000 && error == 0; ++i)
                error = Error_Of([&] { writer.Add_Item(*inbox, item); });
              if (error == 0) error = Error_Of([&] { writer.Commit(); });
              if (error != automation_error::call_failed) return 2;
              // No half of it may slip in by a later call.
              if (Error_Of([&] { writer.Commit(); }) == 0) return 3;
              writer.Roll_Back();
              if (Subjects_Of(*open_store, "Inbox") != "1 2 3") return 4;
              return 1;
            }),
            1);
  EXPECT_EQ(Subjects_Of(*Embedded_Store::Open(file, Store_Mode::Read_Only), "Inbox"), "1 2 3");
}

}  // namespace
}  // namespace tidyfold
