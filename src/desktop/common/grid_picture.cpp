#include "desktop/common/grid_picture.h"

#include <functional>
#include <string>

namespace tidyfold {

std::uint64_t Picture_Of_Rows(const FlexGrid& model, int first, int last) {
  std::uint64_t picture = 14695981039346656037ull;
  const auto add = [&picture](std::uint64_t value) { picture = (picture ^ value) * 1099511628211ull; };
  for (int place = first; place <= last; ++place) {
    const int row = model.Row_At_Place(place);
    const GridRow& at = model.Row_At(row);
    add(at.back_colour * 4ull + (at.bold ? 2ull : 0ull) + at.marked);
    // The texts themselves: the same row can get another text.
    for (int column = FlexGrid::first_item_column; column < model.Cols(); ++column)
      add(std::hash<std::string>{}(model.TextMatrix(row, column)));
  }
  return picture;
}

}  // namespace tidyfold
