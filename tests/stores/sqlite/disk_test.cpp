#include <vector>

#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/fault_vfs.h"
#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;
using automation_error::call_failed, automation_error::corrupt_data, automation_error::unavailable;

TEST(Failing_Disk, Is_Called_What_It_Is) {
  constexpr const char* full = "could not be written: the disk is full. Make room";
  constexpr const char* gone =
      "can no longer be read or written (disk I/O error). Check the disk or the network";
  const struct {
    bool reading;
    int result, system_error;
    std::int32_t number;
    const char* words;
  } cases[] = {{false, SQLITE_FULL, ENOSPC, call_failed, full},
               {false, SQLITE_IOERR_FSYNC, ENOSPC, call_failed, full},
               {false, SQLITE_IOERR_WRITE, EIO, unavailable, gone},
               {true, SQLITE_IOERR_READ, EIO, unavailable, gone},
               {true, SQLITE_CANTOPEN, ENODEV, unavailable, "network share"},
               {true, SQLITE_CORRUPT, 0, corrupt_data, "is damaged"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.result) + " " + std::to_string(c.system_error));
    const Temporary_Directory directory;
    const fs::path file = directory / "a.tfs";
    Make_Small_Store(file);
    Fault_Vfs disk;
    const auto store = Embedded_Store::Open(file, Store_Mode::Read_Write);
    const auto items = Folder_Named(*store, "Inbox")->Items();
    c.reading ? disk.Fail_Reading(1, c.result, c.system_error)
              : disk.Fail_Writing(1, c.result, c.system_error);
    try {
      if (c.reading) items->Item(1)->Body();
      items->Item(1)->Delete();
      store->Commit_Pending();
      ADD_FAILURE();
    } catch (const Automation_Error& error) {
      EXPECT_EQ(error.Number(), c.number);
      for (const std::string& part : {file.string(), std::string(c.words)})
        EXPECT_NE(error.Description().find(part), std::string::npos) << error.Description();
    }
    disk.Repair();
    EXPECT_EQ(Subjects_Of(*store, "Inbox"), "1 2 3");
  }
}

TEST(Failing_Disk, Makes_No_Store_A_Damaged_One) {
  const Temporary_Directory directory;
  const fs::path file = directory / "a.tfs";
  Make_Small_Store(file);
  Fault_Vfs disk;
  for (const auto& [system_error, reason] :
       {std::pair(EIO, Reason::Cannot_Read), {ENOSPC, Reason::Disk_Full}}) {
    for (const Store_Mode mode : {Store_Mode::Read_Write, Store_Mode::Read_Only}) {
      for (int number = 1;; ++number) {
        disk.Fail_Reading(number, SQLITE_IOERR_READ, system_error);
        const auto refusal = Refusal(file, mode);
        EXPECT_EQ(refusal.value_or(reason), reason);
        if (refusal) continue;
        EXPECT_GT(number, 5);
        break;
      }
    }
  }
}

// On Windows nobody can move a file that is open.
TEST_F(Store_File, Changes_To_A_File_That_Was_Moved_Are_Not_Kept) {
  const fs::path elsewhere = directory_ / "b.tfs";
  Make_Small_Store(file_);
  const auto store = Open();
  const auto items = Folder_Named(*store, "Inbox")->Items();
  for (const bool there : {false, true}) {
    there ? fs::rename(elsewhere, file_) : fs::rename(file_, elsewhere);
    items->Remove(1);
    try {
      store->Commit_Pending();
      EXPECT_TRUE(there);
    } catch (const Automation_Error& error) {
      EXPECT_FALSE(there);
      EXPECT_EQ(error.Number(), unavailable);
      EXPECT_NE(error.Description().find("is no longer where it was"), std::string::npos);
    }
    EXPECT_EQ(items->Count(), there ? 2 : 3);
  }
}

}  // namespace
}  // namespace tidyfold
