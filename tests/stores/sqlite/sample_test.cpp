#include "stores/sqlite/sample_store.h"

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
  EXPECT_EQ(Number_By_Sql(directory / "a", "SELECT COUNT(*) FROM item"), 2000);
  EXPECT_EQ(Number_By_Sql(directory / "a", "SELECT COUNT(DISTINCT class) FROM item"), 18);
  EXPECT_EQ(Embedded_Store::Open(directory / "a", Store_Mode::Read_Only)->Check(),
            std::vector<std::string>());
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
