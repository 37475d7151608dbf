#include "desktop/common/row_words.h"

#include "base/size_text.h"

namespace tidyfold {

std::string Words_Of_List(const FlexGrid& grid) {
  const int rows = grid.Shown_Rows();
  if (rows == 0) return grid.Empty_Text().empty() ? "No items" : grid.Empty_Text();
  if (!grid.Has_Row()) return "Items, " + Format_Count(rows) + (rows == 1 ? " row" : " rows");
  std::string words;
  for (int column = FlexGrid::first_item_column; column < grid.Cols(); ++column)
    if (const std::string text = grid.TextMatrix(grid.Row(), column); !text.empty()) words += text + ", ";
  if (grid.Row_At(grid.Row()).bold) words += "unread, ";
  return words + "row " + Format_Count(grid.Place_Of(grid.Row())) + " of " + Format_Count(rows);
}

std::string Words_Of_Header(const FlexGrid& grid) {
  std::string words = "Columns: ";
  if (grid.Picture_Column() > 0) words += grid.Header(grid.Picture_Column()) + ", ";
  for (int column = FlexGrid::first_item_column; column < grid.Cols(); ++column)
    if (column != grid.Picture_Column()) words += grid.Header(column) + ", ";
  words.resize(words.size() - 2);
  if (grid.Sort_Column() > 0 && grid.Sort_Column() < grid.Cols())
    words += "; sorted by " + grid.Header(grid.Sort_Column()) +
             (grid.Sorted_Ascending() ? ", ascending" : ", descending");
  return words;
}

}  // namespace tidyfold
