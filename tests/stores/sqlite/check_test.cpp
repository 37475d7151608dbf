#include <vector>

#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

struct Fault {
  const char* name;
  const char* sql;
  const char* line;
};

class Check_Test : public testing::TestWithParam<Fault> {};

TEST_P(Check_Test, Names_What_Is_Wrong) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Make_Small_Store(file);
  ASSERT_EQ(Run_Sql(file, GetParam().sql), SQLITE_OK);
  const auto store = Embedded_Store::Open(file, Store_Mode::Read_Only);
  const auto faults = store->Check();
  ASSERT_FALSE(faults.empty());
  std::string all;
  for (const auto& fault : faults) all += fault + "\n";
  EXPECT_NE(all.find(GetParam().line), std::string::npos) << all;
}

// Folder 1 is the top, 3 the Inbox; items 1 to 3 lie in it.
INSTANTIATE_TEST_SUITE_P(
    Stores, Check_Test,
    testing::Values(
        Fault{"Folder_Without_Parent", "UPDATE folder SET parent = 99 WHERE id = 5",
              "Folder F5 \"Sent Items\" does not hang below the top folder."},
        Fault{"Folder_In_Itself", "UPDATE folder SET parent = 5 WHERE id = 5",
              "Folder F5 \"Sent Items\" does"},
        Fault{"Folders_In_Each_Other",
              "UPDATE folder SET parent = 5 WHERE id = 6; UPDATE folder SET parent = 6 WHERE id = 5",
              "Folder F6 \"Calendar\" does not hang below the top folder."},
        Fault{"Item_Without_Folder", "UPDATE item SET folder = 99 WHERE id = 2",
              "Item I2 \"2\" lies in a folder that does not exist (F99)."},
        Fault{"Item_Without_Text", "DELETE FROM content WHERE item = 3", "Item I3 \"3\" has lost its text."},
        Fault{"Message_Without_Item", "UPDATE message SET item = 9 WHERE item = 3",
              "The message of item I9 is there, the item is not."},
        Fault{"Attachment_Without_Item", "UPDATE attachment SET item = 9 WHERE item = 3",
              "The attachment of item I9 is there, the item is not."},
        Fault{"Two_Items_In_One_Place",
              "DROP INDEX item_by_position; CREATE INDEX item_by_position ON item (folder, position);"
              "UPDATE item SET position = 1",
              "3 items have position 1 in folder F3."},
        Fault{"Item_Missing_In_The_Index",
              "DROP INDEX item_by_position;"
              "CREATE INDEX item_by_position ON item (folder, position) WHERE id <> 2;"
              "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = 'CREATE UNIQUE INDEX "
              "item_by_position ON item (folder, position)' WHERE name = 'item_by_position'",
              "Folder F3 \"Inbox\" counts 2 items, but holds 3."}),
    [](const auto& one) { return one.param.name; });

TEST(Check, Finds_A_Damaged_Page_That_Opening_Passes_Over) {
  const Temporary_Directory directory;
  const auto file = directory / "a.tfs";
  Make_Small_Store(file);
  const auto page = Number_By_Sql(file, "SELECT rootpage FROM sqlite_schema WHERE name = 'message'");
  std::string bytes = Bytes_Of(file);
  bytes[static_cast<std::size_t>(page - 1) * 4096 + 3] ^= 0x40;
  Write_Bytes(file, bytes);
  const auto store = Embedded_Store::Open(file, Store_Mode::Read_Only);
  EXPECT_EQ(Subjects_Of(*store, "Inbox"), "1 2 3");
  EXPECT_FALSE(store->Check().empty());
}

}  // namespace
}  // namespace tidyfold
