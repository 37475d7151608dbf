#include "stores/sqlite/sample_store.h"

#include <tuple>
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
}

TEST(Sample, Holds_Items_Of_Every_Kind_And_Age) {
  const Temporary_Directory directory;
  ASSERT_TRUE(Make_Sample(directory / "a", "Sample"));
  EXPECT_EQ(Embedded_Store::Open(directory / "a", Store_Mode::Read_Only)->Check(),
            std::vector<std::string>());
  const std::tuple<const char*, int, int> cases[] = {
      {"COUNT(*) FROM item", sample_default_items, sample_default_items},
      {"COUNT(DISTINCT class) FROM item", 18, 18},
      {"COUNT(*) FROM folder", 21, 100},
      {"COUNT(*) FROM item WHERE folder = 2", 100, 2000},
      {"MIN(last_modified) FROM item", 1, 36525},       // before 2000
      {"MAX(last_modified) FROM item", 45659, 46203}};  // after 2024, no later than June 2026
  for (const auto& [what, least, most] : cases) {
    const auto number = Number_By_Sql(directory / "a", "SELECT " + std::string(what));
    EXPECT_GE(number, least) << what;
    EXPECT_LE(number, most) << what;
  }
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
