#include "stores/sqlite/sample_store.h"

#include <algorithm>
#include <set>
#include <vector>

#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

TEST(Sample, The_Same_Seed_Gives_The_Same_Store) {
  const Temporary_Directory directory;
  const auto make = [&](const char* file, const char* name, int items, std::uint64_t seed) {
    EXPECT_TRUE(Make_Sample(directory / file, name, items, seed));
    return Bytes_Of(directory / file);
  };
  const std::string first = make("a", "Sample", 2000, 1);
  EXPECT_EQ(make("b", "Sample", 2000, 1), first);
  EXPECT_NE(make("c", "Sample", 2000, 2), first);
  EXPECT_NE(make("d", "Other", 2000, 1), first);
}

TEST(Sample, Holds_Items_Of_Every_Kind_And_Age) {
  const Temporary_Directory directory;
  ASSERT_TRUE(Make_Sample(directory / "a", "Sample"));
  const auto store = Embedded_Store::Open(directory / "a", Store_Mode::Read_Only);
  std::set<std::int32_t> classes;
  int items = 0, unread = 0, foreign = 0;
  Date oldest = no_date, newest = 0;
  std::vector<MAPIFolder_Ptr> folders{store->Top_Folder()};
  for (std::size_t at = 0; at < folders.size(); ++at) {
    const auto below = folders[at]->Folders();
    for (std::int32_t i = 1; i <= below->Count(); ++i) folders.push_back(below->Item(i));
    const auto in_folder = folders[at]->Items();
    for (std::int32_t i = 1; i <= in_folder->Count(); ++i, ++items) {
      const Item_Ptr item = in_folder->Item(i);
      classes.insert(item->Class());
      unread += item->UnRead() ? 1 : 0;
      oldest = std::min(oldest, item->LastModificationTime());
      newest = std::max(newest, item->LastModificationTime());
      const std::string subject = item->Subject();
      foreign += std::ranges::any_of(subject, [](char c) { return c < 0; }) ? 1 : 0;
      EXPECT_NE(subject, "");
    }
  }
  EXPECT_EQ(items, sample_default_items);
  EXPECT_EQ(classes.size(), 18U) << "one is missing";
  EXPECT_GT(folders.size(), 20U);
  EXPECT_GT(unread, items / 50);
  EXPECT_GT(foreign, items / 50);
  EXPECT_GT(Folder_Named(*store, "Deleted Items")->Items()->Count(), items / 50);
  EXPECT_LT(oldest, 36526) << "before 2000";
  EXPECT_GT(newest, 45658) << "after 2024";
  EXPECT_LT(newest, 46204) << "no later than June 2026";
  EXPECT_EQ(store->Check(), std::vector<std::string>());
}

TEST(Sample, Leaves_Nothing_Behind_When_It_Is_Stopped) {
  const Temporary_Directory directory;
  std::vector<std::int32_t> told;
  EXPECT_FALSE(Make_Sample(directory / "a", "Sample", 50000, 1, [&](std::int32_t written) {
    told.push_back(written);
    return written < 25000;
  }));
  EXPECT_EQ(told.back(), 25000);
  EXPECT_TRUE(All_Files(directory.Path()).empty());
  EXPECT_TRUE(Make_Sample(directory / "a", "Sample", 0)) << "and no items is a number of items";
}

}  // namespace
}  // namespace tidyfold
