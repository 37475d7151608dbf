#include <map>
#include <vector>

#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/fault_vfs.h"
#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

// Notes changes when they have been made, as any caller can, and sorts them by what became of their group.
class Ledger : public Group_Watcher {
 public:
  struct Changes {
    int open = 0, kept = 0, lost = 0;
  };
  void Group_Ending() override { ++endings; }
  void Group_Ended(const std::string& store_id, bool kept) override {
    Changes& changes = of[store_id];
    EXPECT_GT(changes.open, 0) << "a group without changes";
    (kept ? changes.kept : changes.lost) += std::exchange(changes.open, 0);
    ++(kept ? groups_kept : groups_lost);
  }

  std::map<std::string, Changes> of;
  int endings = 0, groups_kept = 0, groups_lost = 0;
};

// Each kind of change adds one item to Deleted Items.
void Delete_First(Embedded_Store& store) {
  Folder_Named(store, "Inbox")->Items()->Item(1)->Delete();
}
// What a few of these change does not fit into SQLite's memory and is written before the group ends.
void Add_Large(Embedded_Store& store) {
  New_Item item;
  item.body = Incompressible(1'500'000);
  store.Writer().Add_Item(*Folder_Named(store, "Deleted Items"), item);
}

struct Disk_Failure {
  const char* name;
  int result, system_error;
  void (*change)(Embedded_Store&);
  int changes, step;  // the first writing fails, then the one `step` later, until all have been tried
};

class Groups : public testing::TestWithParam<Disk_Failure> {};

TEST_P(Groups, Told_To_Be_Kept_Are_What_The_Files_Hold) {
  const auto& [name, result, system_error, change, changes, step] = GetParam();
  const Temporary_Directory directory;
  const fs::path source = directory / "source", files[] = {directory / "a", directory / "b"};
  Add_Numbered(*Embedded_Store::Create(source, "A"), "Inbox", changes);
  Fault_Vfs disk;
  int lost = 0;
  bool failed = true;
  for (int writing = 1; failed; writing += step) {
    SCOPED_TRACE(writing);
    // Both bear one identity in the file; open side by side, the second one gets another.
    for (const auto& file : files) fs::copy_file(source, file, fs::copy_options::overwrite_existing);
    Ledger ledger;
    std::vector<int> kept;
    std::vector<std::string> left;
    {
      Embedded_Outlook outlook;
      outlook.Open({files[0], files[1]});
      outlook.Groups()->Watch(&ledger);
      failed = false;
      disk.Fail_Writing(writing, result, system_error);
      const auto attempt = [&](auto&& call) {
        try {
          call();
        } catch (const Automation_Error&) {
          failed = true;
          disk.Repair();
        }
      };
      for (int i = 0; i < changes; ++i) {
        for (const auto& store : outlook.Stores()) {
          attempt([&] {
            change(*store);
            ++ledger.of[store->Top_Folder()->StoreID()].open;
          });
        }
      }
      attempt([&] { outlook.Groups()->Commit_Pending(); });
      disk.Repair();
      for (const auto& store : outlook.Stores()) {
        const Ledger::Changes& told = ledger.of[store->StoreID()];
        EXPECT_EQ(told.open, 0);
        EXPECT_EQ(Folder_Named(*store, "Deleted Items")->Items()->Count(), told.kept);
        kept.push_back(told.kept);
        left.push_back(Subjects_Of(*store, "Inbox"));
        lost += told.lost;
      }
      EXPECT_EQ(ledger.groups_lost > 0, failed);
      EXPECT_GE(ledger.endings, ledger.groups_kept);
    }
    for (std::size_t i = 0; i < 2; ++i) {
      const auto store = Embedded_Store::Open(files[i], Store_Mode::Read_Write);
      EXPECT_EQ(Subjects_Of(*store, "Inbox"), left[i]);
      EXPECT_EQ(Folder_Named(*store, "Deleted Items")->Items()->Count(), kept[i]);
      EXPECT_EQ(store->Check(), std::vector<std::string>());
    }
  }
  EXPECT_GT(lost, changes) << "several groups must have been lost";
}

INSTANTIATE_TEST_SUITE_P(
    Stores, Groups,
    testing::Values(Disk_Failure{"Full", SQLITE_FULL, ENOSPC, Delete_First, 120, 3},
                    Disk_Failure{"Failing", SQLITE_IOERR_WRITE, EIO, Delete_First, 120, 5},
                    Disk_Failure{"Full_In_A_Change", SQLITE_FULL, ENOSPC, Add_Large, 15, 4001},
                    Disk_Failure{"Failing_In_A_Change", SQLITE_IOERR_WRITE, EIO, Add_Large, 15, 4001}),
    [](const auto& one) { return one.param.name; });

TEST(Group, Ends_With_The_Writers_Transaction_And_Not_Within_It) {
  const Temporary_Directory directory;
  Make_Small_Store(directory / "a");
  Ledger ledger;
  Embedded_Outlook outlook;
  outlook.Open({directory / "a"});
  outlook.Watch(&ledger);
  Embedded_Store& store = *outlook.Stores()[0];
  Ledger::Changes& changes = ledger.of[store.StoreID()];
  const auto change = [&] {
    Delete_First(store);
    ++changes.open;
  };
  change();
  store.Writer().Begin();
  EXPECT_EQ(changes.kept, 1);
  change();
  outlook.Commit_Pending();
  EXPECT_EQ(changes.open, 1);
  EXPECT_THROW(store.Writer().Begin(), Automation_Error);
  store.Writer().Roll_Back();
  EXPECT_THROW(store.Writer().Commit(), Automation_Error);
  EXPECT_EQ(changes.lost, 1);
  outlook.Watch(nullptr);
}

}  // namespace
}  // namespace tidyfold
