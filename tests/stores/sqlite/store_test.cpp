#include <random>
#include <vector>

#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

// Compared with the simplest model: two lists of identifiers.
TEST(Embedded_Store_Items, No_Place_Ever_Stands_For_Another_Item) {
  const Temporary_Directory directory;
#ifdef _WIN32
  const std::filesystem::path file = directory / "store # 50% \xC3\xA9.tfs";
#else
  const std::filesystem::path file = directory / "store # 50% é?.tfs";
#endif
  auto store = Embedded_Store::Create(file, "Personal Folders");
  constexpr int count = 3000, steps = 20000;
  Add_Numbered(*store, "Inbox", count);
  auto inbox = Folder_Named(*store, "Inbox");
  auto items = inbox->Items();
  std::vector<std::string> expected, expected_deleted;
  for (int i = 1; i <= count; ++i) expected.push_back("I" + std::to_string(i));
  std::mt19937 random(7);
  std::size_t at = 0;
  for (int step = 0; step < steps && !expected.empty(); ++step) {
    // Mostly walks in both directions, sometimes jumps.
    const auto choice = random() % 200;
    if (choice == 0) at = random() % expected.size();
    if (choice == 1) at = 0;
    if (choice == 2 || at >= expected.size()) at = expected.size() - 1;
    const auto index = static_cast<std::int32_t>(at + 1);
    const bool forwards = (step / 700) % 2 == 0;
    const auto action = random() % 8;
    ASSERT_EQ(items->Item(index)->EntryID(), expected[at]) << "step " << step;
    if (action < 2) {
      const Item_Ptr item = items->Item(index);
      item->Delete();
      ASSERT_EQ(item->Parent()->Name(), "Deleted Items");
      expected_deleted.push_back(expected[at]);
    } else if (action == 2) {
      items->Remove(index);
    } else if (action == 3 && step % 50 == 0) {
      expected.push_back(store->Writer().Add_Item(*inbox, {}));
    } else if (action == 4 && step % 10 == 0) {
      items->Item(index)->Move(*inbox);
      expected.push_back(expected[at]);
    }
    if (action < 3 || (action == 4 && step % 10 == 0))
      expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
    if (action >= 3 && forwards) ++at;
    if (!forwards && at > 0) --at;
    ASSERT_EQ(items->Count(), static_cast<std::int32_t>(expected.size()));
  }
  items.reset();
  inbox.reset();
  store.reset();
  store = Embedded_Store::Open(file, Store_Mode::Read_Write);
  for (const auto& [name, ids] : {std::pair("Inbox", &expected), {"Deleted Items", &expected_deleted}}) {
    items = Folder_Named(*store, name)->Items();
    ASSERT_EQ(items->Count(), static_cast<std::int32_t>(ids->size()));
    for (std::int32_t i = items->Count(); i >= 1; --i)
      ASSERT_EQ(items->Item(i)->EntryID(), (*ids)[static_cast<std::size_t>(i - 1)]);
  }
  EXPECT_GT(expected_deleted.size(), 1000U) << "the walk has to get somewhere";
  EXPECT_EQ(store->Check(), std::vector<std::string>());
}

// Folder 1 is the top, 3 the Inbox; items 1 to 3 lie in it.
TEST_F(Store_File, Check_Names_What_Is_Wrong) {
  const std::pair<const char*, const char*> cases[] = {
      {"UPDATE folder SET parent = 99 WHERE id = 5",
       "Folder F5 \"Sent Items\" does not hang below the top folder."},
      {"UPDATE folder SET parent = 5 WHERE id = 6; UPDATE folder SET parent = 6 WHERE id = 5",
       "Folder F6 \"Calendar\" does not hang below the top folder."},
      {"UPDATE item SET folder = 99 WHERE id = 2",
       "Item I2 \"2\" lies in a folder that does not exist (F99)."},
      {"UPDATE content SET item = 9 WHERE item = 3", "The content of item I9 is there, the item is not."},
      {"UPDATE content SET packed = zeroblob(50) WHERE item = 3", "The text of item I3 cannot be unpacked."},
      {"DROP INDEX item_by_position; CREATE INDEX item_by_position ON item (folder, position);"
       "UPDATE item SET position = 1",
       "3 items have position 1 in folder F3."},
      {"DROP INDEX item_by_position;"
       "CREATE INDEX item_by_position ON item (folder, position) WHERE id <> 2;"
       "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = 'CREATE UNIQUE INDEX "
       "item_by_position ON item (folder, position)' WHERE name = 'item_by_position'",
       "Folder F3 \"Inbox\" counts 2 items, but holds 3."}};
  for (const auto& [sql, line] : cases) {
    SCOPED_TRACE(sql);
    std::filesystem::remove(file_);
    Make_Small_Store(file_);
    ASSERT_EQ(Run_Sql(file_, sql), SQLITE_OK);
    std::string all;
    for (const auto& fault : Open(Store_Mode::Read_Only)->Check()) all += fault + "\n";
    EXPECT_NE(all.find(line), std::string::npos) << all;
  }
}

TEST_F(Store_File, Check_Finds_A_Damaged_Page_That_Opening_Passes_Over) {
  Make_Small_Store(file_);
  const auto page = Number_By_Sql(file_, "SELECT rootpage FROM sqlite_schema WHERE name = 'content'");
  std::string bytes = Bytes_Of(file_);
  bytes[static_cast<std::size_t>(page - 1) * 4096 + 3] ^= 0x40;
  Write_Bytes(file_, bytes);
  const auto store = Open(Store_Mode::Read_Only);
  EXPECT_EQ(Subjects_Of(*store, "Inbox"), "1 2 3");
  EXPECT_FALSE(store->Check().empty());
}

}  // namespace
}  // namespace tidyfold
