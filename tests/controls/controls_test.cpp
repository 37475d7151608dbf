#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "base/dates.h"
#include "base/text.h"
#include "base/written_date.h"
#include "controls/flex_grid.h"
#include "controls/tree_view.h"
#include "controls/widgets.h"

namespace tidyfold {
namespace {

TEST(Text, Is_Cut_At_Blanks_And_Between_Characters) {
  EXPECT_EQ(Trim("  \ta b\r\n  "), "\ta b\r\n");
  EXPECT_EQ(std::string(Trim_Right("  a  ")) + std::string(Trim("   ")), "  a");
  EXPECT_EQ(First_Characters("äöü€𝄞x", 5), "äöü€𝄞");
  EXPECT_EQ(First_Characters("ab\xE2\x82", 3), "ab\xE2");
  EXPECT_EQ(First_Characters("ab", 20), "ab");
  EXPECT_EQ(Valid_Utf8("a\xE2\x82ö"), "a\xEF\xBF\xBD\xEF\xBF\xBDö");
}

TEST(Text, Is_Read_As_A_Date_In_The_Form_Of_The_Locale_And_Of_The_List) {
  const struct {
    const char *text, *form, *date;
  } cases[] = {{"2015-12-31", "%d.%m.%Y", "2015-12-31"},
               {"31.12.2015", "%d.%m.%Y", "2015-12-31"},
               {" 1. 2. 68 ", "%d.%m.%y", "2068-02-01"},
               {"12/31/69", "%m/%d/%y", "1969-12-31"},
               {"15/2/3", "%y/%-m/%e", "2015-02-03"},
               {"2015年12月31日", "%Y年%m月%d日", "2015-12-31"},
               {"2/3/2015", "%D", "2015-02-03"},
               {"2016/02/29", "%d %b %Y", "2016-02-29"},
               {"02/29/2015", "%m/%d/%Y", ""},
               {"31/12/2015", "%m/%d/%Y", ""},
               {"1/2/215", "%m/%d/%Y", ""},
               {"2015-12", "%F", ""},
               {"2015-12-31x", "%F", ""},
               {"20151231", "%F", ""},
               {"3 1 2015", "%d %b %Y", ""},
               {"", "%F", ""},
               {"2015-99999999999-1", "%F", ""},
               {"-1/2/2015", "%m/%d/%Y", ""}};
  for (const auto& [text, form, expected] : cases) {
    const std::optional<Date> date = Read_Date(text, form);
    EXPECT_EQ(date ? Format_Date(*date) : "", expected) << text << " as " << form;
  }
}

TEST(Text, Beginnings_Without_Case_Are_Those_Of_The_Upper_Cases) {
  for (const std::string text : {"", "Re", "RE: x", "Ärger", "ärger", "\xFFx", "\xFEx", "x\xC3"}) {
    for (const std::string beginning : {"", "re", "ÄR", "\xFF", "\xFEX", "X\xC3", "re: xy"}) {
      EXPECT_EQ(Begins_Ignoring_Case(text, beginning), Upper_Case(text).starts_with(Upper_Case(beginning)))
          << text << " begins with " << beginning;
    }
  }
}

TEST(Dates, Are_Written_And_Read_Alike) {
  for (const auto& [day, text] : {std::pair<Date, const char*>{0, "1899-12-30"},
                                  {36526.75, "2000-01-01"},
                                  {-0.25, "1899-12-29"},
                                  {949998, "4501-01-01"},
                                  {2958465, "9999-12-31"}}) {
    EXPECT_EQ(Format_Date(day), text);
    EXPECT_EQ(Parse_Date(text), std::floor(day));
  }
  for (const Date none : {1e300, -1e300, std::numeric_limits<Date>::quiet_NaN(), 2958466.0})
    EXPECT_EQ(Format_Date(none), "");
  for (const char* none : {"", "2003-02-29", "2003-13-01", "2003-1-01", "2003-01-01 ", "+003-01-01"})
    EXPECT_EQ(Parse_Date(none), std::nullopt) << none;
}

// Texts by item number.
class Cells : public Cell_Source {
 public:
  std::string Cell_Text(const GridRow& row, int) const override {
    return texts.at(static_cast<std::size_t>(row.item - 1));
  }
  std::string_view Sort_Text(const GridRow& row, int column, std::string& room) const override {
    return room = Cell_Text(row, column);
  }
  std::vector<std::string> texts;
};

class Grid_Model : public testing::Test {
 protected:
  Grid_Model() {
    grid_.cells = &cells_;
    grid_.Set_Cols(3);
  }
  void Add(std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
      cells_.texts.emplace_back(text);
      GridRow row;
      row.row_data = 1;
      row.item = static_cast<std::int32_t>(cells_.texts.size());
      grid_.Add_Item(row);
    }
  }
  std::string Order() const {
    std::string order;
    for (int row = 1; row < grid_.Rows(); ++row) order += std::to_string(grid_.Row_At(row).item);
    return order;
  }
  Cells cells_;
  FlexGrid grid_{"grdItems"};
};

TEST_F(Grid_Model, Sorts_By_Bytes_And_Keeps_Equal_Rows_In_Order) {
  Add({"same beginning b", "B", "a", "same beginning a", "a", "", "ä", "same beg"});
  grid_.Sort(2, Sort_Mode::String_Ascending);
  EXPECT_EQ(Order(), "62358417");
  const std::uint64_t version = grid_.Row_Version();
  grid_.Sort(2, Sort_Mode::String_Ascending);
  EXPECT_EQ(grid_.Row_Version(), version) << "sorted rows do not move";
  grid_.Sort(2, Sort_Mode::String_Descending);
  EXPECT_EQ(Order(), "71483526") << "rows 3 and 5 stay as they were";
  EXPECT_FALSE(grid_.Sorted_Ascending());
}

TEST_F(Grid_Model, Sorts_New_Rows_In_As_If_All_Were_Sorted) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    const auto mode = round % 2 == 0 ? Sort_Mode::String_Ascending : Sort_Mode::String_Descending;
    const auto add = [&](int rows) {
      for (; rows > 0; --rows) Add({std::string(random() % 30, 'x').append(1, "ab"[random() % 2]).c_str()});
    };
    grid_.Set_Rows(1);
    add(static_cast<int>(random() % 60));
    grid_.Sort(2, mode);
    const std::uint32_t share = random() % 4;
    grid_.Remove_Rows_If([&](const GridRow&) { return random() % 4 < share; });
    add(static_cast<int>(random() % 20));
    FlexGrid whole("whole");
    whole.cells = &cells_;
    whole.Set_Cols(3);
    for (int row = 1; row < grid_.Rows(); ++row) whole.Add_Item(grid_.Row_At(row));
    whole.Sort(2, mode);
    grid_.Sort_New_Rows(2, mode);
    ASSERT_EQ(grid_.Rows(), whole.Rows());
    for (int row = 1; row < grid_.Rows(); ++row)
      ASSERT_EQ(grid_.Row_At(row).item, whole.Row_At(row).item) << row;
  }
}

TEST_F(Grid_Model, Counts_Marks_And_Forgets_A_Current_Row_That_Went) {
  Add({"a", "b", "c", "d"});
  for (const int row : {2, 3, 4}) grid_.Set_Mark(row, true);
  grid_.Set_Row(4);
  grid_.Remove_Rows_If([](const GridRow& row) { return row.item == 3; });
  EXPECT_EQ(grid_.Marked_Rows(), 2);
  EXPECT_EQ(grid_.Row(), 0);
  EXPECT_EQ(Order(), "124");
  grid_.Set_Rows(3);
  EXPECT_EQ(grid_.Marked_Rows(), 1);
}

TEST(Tree, Sorts_Children_Ignoring_Case_And_Never_Reuses_An_Index) {
  TreeView tree{"trvFolders"};
  const int root = tree.Add(0, "OUTLOOK", "Outlook");
  tree.Set_Sorted(root, true);
  const int b = tree.Add(root, "kb", "b - (3)"), a = tree.Add(root, "ka", "A"), c = tree.Add(root, "kc", "C"),
            second_b = tree.Add(root, "kb2", "B");
  EXPECT_EQ(tree.Child(root), a);
  EXPECT_EQ(tree.Next(a), second_b) << "a bare name stands before one with a count";
  EXPECT_EQ(tree.Next(second_b), b);
  const int below = tree.Add(b, "kx", "x");
  tree.Set_Selected_Item(below);
  tree.Remove(b);
  EXPECT_EQ(tree.Selected_Item(), root);
  EXPECT_EQ(tree.Next(second_b), c);
  EXPECT_EQ(tree.Children(root), 3);
  EXPECT_FALSE(tree.Exists(b));
  EXPECT_FALSE(tree.Exists(below));
  EXPECT_EQ(tree.Find_Key("kx"), 0);
  EXPECT_EQ(tree.Add(root, "kd", "d"), 7);
  EXPECT_THROW(tree.Text(b), std::out_of_range);
}

}  // namespace
}  // namespace tidyfold
