#include <random>
#include <set>
#include <vector>

#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/other_process.h"
#include "stores/sqlite/temporary_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr Store_Mode modes[] = {Store_Mode::Read_Write, Store_Mode::Read_Only};

using Make = std::function<void(const fs::path&)>;

Make Bytes(const std::string& bytes) {
  return [bytes](const fs::path& file) { Write_Bytes(file, bytes); };
}
Make After(const std::string& sql) {
  return [sql](const fs::path& file) {
    Make_Small_Store(file);
    ASSERT_EQ(Run_Sql(file, sql), SQLITE_OK);
  };
}
Make Cut(std::size_t bytes) {
  return [bytes](const fs::path& file) {
    Make_Small_Store(file);
    Write_Bytes(file, Bytes_Of(file).substr(0, bytes));
  };
}

TEST(Open, Bad_Files_Are_Refused_And_Left_Alone) {
  const std::tuple<const char*, Reason, Make> cases[] = {
      {"missing", Reason::Missing, [](const fs::path&) {}},
      {"folder", Reason::Not_A_Store, [](const fs::path& file) { fs::create_directory(file); }},
      {"empty", Reason::Not_A_Store, Bytes("")},
      {"text", Reason::Not_A_Store, Bytes("From: you\n")},
      {"other database", Reason::Not_A_Store,
       [](const fs::path& file) { Run_Sql(file, "CREATE TABLE item (id); PRAGMA user_version = 1"); }},
      {"newer", Reason::Newer_Version, After("PRAGMA user_version = 3")},
      {"cut in the header", Reason::Not_A_Store, Cut(50)},
      {"cut in half", Reason::Damaged, Cut(20000)},
      {"no index", Reason::Damaged, After("DROP INDEX item_by_position")},
      {"no identity", Reason::Damaged, After("DELETE FROM store")},
      {"no top folder", Reason::Damaged, After("UPDATE folder SET parent = 1")}};
  for (const auto& [name, reason, make] : cases) {
    const Temporary_Directory directory;
    const fs::path file = directory / "bad.tfs";
    make(file);
    const auto before = All_Files(directory.Path());
    for (const Store_Mode mode : modes) {
      EXPECT_EQ(Refusal(file, mode), reason) << name;
      EXPECT_EQ(All_Files(directory.Path()), before) << name;
    }
  }
}

// Opening does not scan the file: damage may show only when the page is read, but always as an error.
TEST(Open, A_Flipped_Byte_Never_Brings_The_Program_Down) {
  const Temporary_Directory directory;
  const fs::path file = directory / "flipped.tfs";
  Make_Small_Store(file);
  const std::string sound = Bytes_Of(file);
  std::mt19937 random(3);
  std::set<std::string_view> outcomes;
  for (int round = 0; round < 600; ++round) {
    std::string bytes = sound;
    // Every second time in the header of a page, where it does most harm.
    const std::size_t at =
        round % 2 == 0 ? random() % bytes.size() : 4096 * (random() % (bytes.size() / 4096)) + random() % 120;
    bytes[at] = static_cast<char>(bytes[at] ^ (1 << random() % 8));
    Write_Bytes(file, bytes);
    try {
      const auto store = Embedded_Store::Open(file, Store_Mode::Read_Write);
      const auto inbox = Folder_Named(*store, "Inbox");
      for (std::int32_t i = inbox->Items()->Count(); i >= 1; --i) {
        const Item_Ptr item = inbox->Items()->Item(i);
        item->Body();
        item->Delete();
      }
      store->Commit_Pending();
      store->Check();
      outcomes.insert("unharmed");
    } catch (const Store_Open_Error&) {
      outcomes.insert("refused");
    } catch (const std::exception&) {
      outcomes.insert("failed");
    }
  }
  EXPECT_EQ(outcomes.size(), 3U);
}

TEST(Open, A_File_That_Exists_Is_Never_Overwritten) {
  const Temporary_Directory directory;
  Write_Bytes(directory / "letter.txt", "Dear all");
  for (const auto& [name, reason] :
       {std::pair("letter.txt", Reason::Exists), {"nowhere/new.tfs", Reason::Cannot_Write}})
    EXPECT_EQ(Refusal(directory / name, [&] { Embedded_Store::Create(directory / name, "New"); }), reason);
  EXPECT_EQ(All_Files(directory.Path()).size(), 1U);
  EXPECT_EQ(Bytes_Of(directory / "letter.txt"), "Dear all");
}

TEST_F(Store_File, Reading_Only_Leaves_No_Trace) {
  Make_Small_Store(file_);
  // The second round finds a store whose writer has crashed, and its log with a deletion.
  for (const int left : {3, 2}) {
    const auto before = All_Files(directory_.Path());
    const auto time = fs::last_write_time(file_);
    {
      const auto store = Embedded_Store::Open(file_, Store_Mode::Read_Only);
      const auto other = Embedded_Store::Open(file_, Store_Mode::Read_Only);
      const auto items = Folder_Named(*store, "Inbox")->Items();
      EXPECT_EQ(items->Count(), left);
      EXPECT_EQ(items->Item(left)->Body(), "Body of " + std::to_string(left));
      const std::function<void()> changes[] = {
          [&] { items->Item(1)->Delete(); },
          [&] { items->Remove(1); },
          [&] { store->Writer().Begin(); },
          [&] { store->Top_Folder()->Folders()->Remove(1); },
          [&] { items->Item(1)->Move(*Folder_Named(*store, "Tasks")); },
          [&] { store->Writer().Add_Item(*Folder_Named(*store, "Inbox"), {}); }};
      for (const auto& change : changes) EXPECT_EQ(Error_Of(change), automation_error::no_access);
      EXPECT_EQ(items->Count(), left);
      store->Commit_Pending();
      EXPECT_EQ(store->Check(), std::vector<std::string>());
      EXPECT_EQ(Refusal(file_, Store_Mode::Read_Write), Reason::Locked) << "nobody writes under a reader";
    }
    EXPECT_EQ(All_Files(directory_.Path()), before);
    EXPECT_EQ(fs::last_write_time(file_), time);
    if (left == 2) break;
    EXPECT_EQ(In_Killed_Process([&] {
                Embedded_Store& store = Left_Open(Open());
                Folder_Named(store, "Inbox")->Items()->Remove(3);
                store.Commit_Pending();
                return 0;
              }),
              0);
    EXPECT_GT(fs::file_size(directory_ / "a.tfs-wal"), 0U);
  }
}

// The lock goes with the process that holds it, however it ends, and with nothing else that happens to the
// file.
TEST_F(Store_File, One_Writer_Or_Many_Readers) {
  Make_Small_Store(file_);
  for (const Store_Mode theirs : modes) {
    Other_Process other([&] { return Left_Open(Open(theirs)).Top_Folder() == nullptr ? 1 : 0; });
    ASSERT_EQ(other.Result(), 0);
    const bool reading = theirs == Store_Mode::Read_Only;
    EXPECT_EQ(Refusal(file_, Store_Mode::Read_Write), Reason::Locked);
    EXPECT_EQ(Refusal(file_, Store_Mode::Read_Only), reading ? std::nullopt : std::optional(Reason::Locked));
    other.Kill();
    EXPECT_EQ(Refusal(file_, Store_Mode::Read_Write), std::nullopt);
  }
  const auto store = Open();
  fs::create_symlink(file_, directory_ / "link.tfs");
  for (const Store_Mode mode : modes) {
    EXPECT_EQ(Refusal(file_, mode), Reason::Locked);
    EXPECT_EQ(Refusal(directory_ / "link.tfs", mode), Reason::Locked);
  }
  EXPECT_EQ(In_Killed_Process([&] { return Run_Sql(file_, "DELETE FROM item"); }), SQLITE_BUSY);
  EXPECT_EQ(Run_Sql(file_, "DELETE FROM item"), SQLITE_BUSY);
  EXPECT_EQ(Subjects_Of(*store, "Inbox"), "1 2 3");
}

}  // namespace
}  // namespace tidyfold
