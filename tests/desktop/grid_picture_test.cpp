#include "desktop/common/grid_picture.h"

#include <gtest/gtest.h>

namespace tidyfold {
namespace {

struct One_Text : Cell_Source {
  std::string Cell_Text(const GridRow&, int) const override { return text; }
  std::string_view Sort_Text(const GridRow&, int, std::string&) const override { return text; }
  std::string text = "before";
};

TEST(Grid_Picture, Differs_Wherever_The_Rows_Would_Be_Painted_Differently) {
  FlexGrid grid("grdItems");
  One_Text texts;
  grid.cells = &texts;
  grid.Set_Cols(FlexGrid::first_item_column + 1);
  grid.Add_Item({.row_data = 1, .item = 1});
  const auto picture = [&] { return Picture_Of_Rows(grid, 1, 1); };
  const std::uint64_t before = picture();
  EXPECT_EQ(picture(), before);
  const std::function<void(bool)> changes[] = {
      [&](bool made) { texts.text = made ? "after" : "before"; },
      [&](bool made) { grid.Set_Mark(1, made); },
      [&](bool made) { grid.Set_Paint(1, made, system_window_background); },
      [&](bool made) { grid.Set_Paint(1, false, made ? 0xFF : system_window_background); },
  };
  for (const auto& change : changes) {
    SCOPED_TRACE(&change - changes);
    change(true);
    EXPECT_NE(picture(), before);
    change(false);
    EXPECT_EQ(picture(), before);
  }
}

}  // namespace
}  // namespace tidyfold
