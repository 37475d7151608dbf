#include "runs/taking_back_fixture.h"
#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/fault_vfs.h"
#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

constexpr int item_count = 250;

struct Store_File {
  Temporary_Directory directory;
  std::optional<Fault_Vfs> disk;
  Embedded_Outlook outlook;
};

class Taking_Back_On_Disk : public Store_File, public Taking_Back_Fixture {
 protected:
  Taking_Back_On_Disk() : Taking_Back_Fixture(outlook) {
    // Only the store's disk fills: the log is opened before.
    log.Begin({}, now);
    log.End({}, now);
    disk.emplace();
    outlook.Add(Embedded_Store::Create(directory / "store", "Personal"));
  }

  // Ends the group of changes at some yields, as a front end does.
  struct Committing_Events : Events {
    explicit Committing_Events(Embedded_Outlook& stores) : stores_(stores) {}
    void Do_Events() override {
      if (++yields_ % 37 == 0) stores_.Commit_Pending();
    }
    Embedded_Outlook& stores_;
    int yields_ = 0;
  };
  std::int32_t Items_In(const char* name) {
    return Folder_Named(*outlook.Stores().front(), name)->Items()->Count();
  }
};

TEST_F(Taking_Back_On_Disk, CountsWhatWasKeptWheneverTheDiskFills) {
  Embedded_Store& store = *outlook.Stores().front();
  const std::string store_id = store.StoreID();
  Committing_Events committing(outlook);
  Taking_Back with_groups(session, outlook.Groups(), log, &Get_Item_Date, clock, box, committing, errors);
  box.Answer_Anything();
  const std::vector<std::string> ids = Add_Items(store.Writer(), *Folder_Named(store, "Inbox"), item_count);
  store.Commit_Pending();
  bool failed = true;
  int failures = 0;
  for (int writing = 1; failed; writing += 3) {
    SCOPED_TRACE(writing);
    const std::int64_t run = Clean(ids, store_id);
    store.Commit_Pending();
    disk->Fail_Writing(writing, SQLITE_FULL, ENOSPC);
    const Taking_Back_Report report = with_groups.Take_Back_Run(run);
    disk->Repair();
    failed = report.put_back < item_count;
    failures += failed ? 1 : 0;
    EXPECT_EQ(report.put_back, Items_In("Inbox"));
    EXPECT_EQ(Items_In("Deleted Items"), item_count - report.put_back);
    std::int64_t noted = 0;
    log.Items(report.run,
              [&](const Logged_Item& item) { noted += item.result == Item_Result::Done ? 1 : 0; });
    EXPECT_EQ(noted, report.put_back);
    EXPECT_EQ(log.Run(run)->taken_back != 0, !failed);
    if (failed) {
      const Taking_Back_Report rest = with_groups.Take_Back_Run(run);
      EXPECT_EQ(rest.ending, Taking_Back_Report::Ending::Done) << rest.failure << report.failure;
      EXPECT_TRUE(rest.Complete());
    }
    ASSERT_EQ(Items_In("Inbox"), item_count);
  }
  EXPECT_GE(failures, 3);
}

}  // namespace
}  // namespace tidyfold
