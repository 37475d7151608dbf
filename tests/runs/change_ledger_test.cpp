#include "runs/change_ledger.h"

#include "errors/automation_error.h"
#include "runs/log_fixture.h"

namespace tidyfold {
namespace {

// Stores whose groups a test ends.
struct Groups : Change_Groups {
  void Commit_Pending() override {
    watcher->Group_Ending();
    for (const auto& [store, kept] : ending) watcher->Group_Ended(store, kept);
    if (fails) throw Automation_Error(automation_error::call_failed, "The disk is full.", "Test");
  }
  bool Commit_Due() override { return !waits && Change_Groups::Commit_Due(); }
  void Watch(Group_Watcher* new_watcher) override { watcher = new_watcher; }
  Group_Watcher* watcher = nullptr;
  std::vector<std::pair<std::string, bool>> ending;
  bool fails = false, waits = false;
};

class Change_Ledger_Test : public Log_Fixture {
 protected:
  Change_Ledger_Test() { log.Begin({}, now); }
  // As a strategy changes an item.
  void Change(Change_Ledger& ledger, const std::string& store, const std::string& entry_id = "I1") {
    const std::int64_t number = log.Note(Noted(store));
    ledger.Before_Change(store);
    ledger.Pending(store, entry_id, [this, number, store](const Change_Outcome& outcome) {
      settled += store + (outcome.kept ? "+" : "-") + outcome.reason + outcome.new_entry_id;
      log.Set_Result(number, outcome.kept ? Item_Result::Done : Item_Result::Failed);
    });
  }
  std::string Results() {
    std::string results;
    for (const Logged_Item& item : Items(log, 1)) results += std::to_string(static_cast<int>(item.result));
    return results;
  }
  Run_Log log{file};
  std::string settled;
};

TEST_F(Change_Ledger_Test, CountsWhatWasKept) {
  Groups groups;
  {
    Change_Ledger ledger(&groups, log);
    Change(ledger, "A");
    Change(ledger, "B");
    Change(ledger, "A");
    groups.waits = true;
    ledger.Settle_Due();
    EXPECT_EQ(settled, "") << "B's may be among those that wait";
    groups.waits = false;
    groups.ending = {{"A", true}};
    groups.Commit_Pending();
    EXPECT_EQ(settled, "A+A+");
    settled.clear();
    Change(ledger, "A");
    EXPECT_EQ(Results(), "000") << "A store with groups writes the log when a group ends.";
    groups.ending = {{"A", false}};
    groups.fails = true;
    EXPECT_THROW(ledger.Settle(), Automation_Error);
    EXPECT_EQ(settled, "A-B+") << "B has no groups.";
    EXPECT_EQ(Results(), "1112");
    EXPECT_EQ(ledger.Log_Failure(), "");
  }
  EXPECT_EQ(groups.watcher, nullptr);
}

TEST_F(Change_Ledger_Test, ASingleChangeMayFailOrBringAnotherIdentityWhileItsGroupIsKept) {
  Groups groups;
  Change_Ledger ledger(&groups, log);
  for (const char* id : {"I1", "I2", "I3", "I1"}) Change(ledger, "A", id);
  Change(ledger, "B", "I1");
  ledger.Not_Kept("A", "I1", "Full.");
  ledger.Renamed("A", "I3", "I9");
  ledger.Group_Ended("A", true);
  EXPECT_EQ(settled, "A-Full.A+A+I9A-Full.");
  settled.clear();
  Change(ledger, "A", "I1");
  ledger.Group_Ended("A", true);
  ledger.Settle();
  EXPECT_EQ(settled, "A+B+") << "What was told belongs to one group of one store.";
}

TEST_F(Change_Ledger_Test, WithoutGroupsEachChangeLastsEvenIfTheLogCannotBeWritten) {
  Change_Ledger ledger(nullptr, log);
  Change(ledger, "A");
  EXPECT_EQ(Results(), "0") << "Without groups each change is written ahead.";
  ledger.Settle();
  EXPECT_EQ(Results(), "1");
  Run_Sql(file, "DROP TABLE item");
  settled.clear();
  Change(ledger, "A");
  EXPECT_NE(ledger.Log_Failure().find(file.string()), std::string::npos);
  EXPECT_EQ(settled, "A+") << "What the store did counts all the same.";
}

}  // namespace
}  // namespace tidyfold
