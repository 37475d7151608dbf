#include "controls/flex_grid.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <numeric>

namespace tidyfold {

std::string Row_Key(std::int32_t folder, std::int32_t item) {
  char key[32];
  if (item < 0) {
    std::snprintf(key, sizeof key, "%03d", folder);
  } else {
    std::snprintf(key, sizeof key, "%03d-%05d", folder, item);
  }
  return key;
}

void FlexGrid::Tell() {
  if (redraw_) {
    Notify();
  } else {
    untold_ = true;
  }
}

void FlexGrid::Rows_Changed() {
  ++row_version_;
  Tell();
}

void FlexGrid::Count_Marks() {
  marked_rows_ = static_cast<int>(
      std::count_if(rows_.begin(), rows_.end(), [](const GridRow& row) { return row.marked; }));
}

void FlexGrid::Columns_Changed() {
  ++column_version_;
  Tell();
}

void FlexGrid::Set_Redraw(bool redraw) {
  redraw_ = redraw;
  if (redraw_ && std::exchange(untold_, false)) Notify();
}

void FlexGrid::Set_Rows(int rows) {
  if (rows >= Rows()) return;
  rows_.resize(static_cast<std::size_t>(std::max(rows - 1, 0)));
  if (row_ >= Rows()) row_ = 0;
  Count_Marks();
  Rows_Changed();
}

void FlexGrid::Set_Cols(int columns) {
  headers_.resize(static_cast<std::size_t>(columns));
  widths_.resize(headers_.size());
  sort_column_ = 0;
  Columns_Changed();
}

void FlexGrid::Set_Header(int column, std::string_view text) {
  headers_.at(static_cast<std::size_t>(column)) = text;
  Columns_Changed();
}

void FlexGrid::Set_Column_Width(int column, Twips width) {
  Twips& current = widths_.at(static_cast<std::size_t>(column));
  if (current == width) return;
  current = width;
  Columns_Changed();
}

std::string FlexGrid::TextMatrix(int row, int column) const {
  if (row == 0) return Header(column);
  const GridRow& at = Row_At(row);
  if (column == key_column) return Row_Key(at.row_data, at.item);
  if (column == mark_column) return at.marked ? "1" : "0";
  return cells == nullptr ? std::string{} : cells->Cell_Text(at, column);
}

bool FlexGrid::Add_Item(const GridRow& row) {
  if (Rows() >= capacity_) return false;
  try {
    rows_.push_back(row);
  } catch (const std::bad_alloc&) {
    return false;
  }
  marked_rows_ += row.marked ? 1 : 0;
  Rows_Changed();
  return true;
}

void FlexGrid::Set_Mark(int row, bool marked) {
  GridRow& at = At(row);
  if (at.marked == marked) return;
  at.marked = marked;
  marked_rows_ += marked ? 1 : -1;
  Rows_Changed();
}

void FlexGrid::Set_Paint(int row, bool bold, Colour back_colour) {
  GridRow& at = At(row);
  if (at.bold == bold && at.back_colour == back_colour) return;
  at.bold = bold;
  at.back_colour = back_colour;
  Rows_Changed();
}

namespace {

// The first eight bytes of a text as a number that orders as the text does; most comparisons end here.
std::uint64_t Prefix(std::string_view text) {
  unsigned char bytes[8] = {};
  std::memcpy(bytes, text.data(), std::min<std::size_t>(text.size(), sizeof bytes));
  std::uint64_t prefix = 0;
  for (const unsigned char byte : bytes) prefix = prefix << 8 | byte;
  return prefix;
}

struct Sort_Key {
  std::uint64_t prefix;
  std::uint64_t offset;  // of the rest of the text in the pool
  std::uint32_t length;
  std::uint32_t row;
};

}  // namespace

void FlexGrid::Sort(int column, Sort_Mode mode) {
  const bool ascending = mode == Sort_Mode::String_Ascending;
  sort_column_ = column;
  sorted_ascending_ = ascending;
  std::string pool, room;
  std::vector<Sort_Key> keys;
  keys.reserve(rows_.size());
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    std::string_view text;
    if (column < first_item_column) {
      room = TextMatrix(static_cast<int>(i) + 1, column);
      text = room;
    } else if (cells != nullptr) {
      text = cells->Sort_Text(rows_[i], column, room);
    }
    // What the prefix holds whole need not be kept.
    const bool short_text = text.size() <= 8;
    keys.push_back({Prefix(text), pool.size(), static_cast<std::uint32_t>(short_text ? 0 : text.size() - 8),
                    static_cast<std::uint32_t>(i)});
    if (!short_text) pool.append(text.substr(8));
  }
  const auto rest = [&](const Sort_Key& key) {
    return std::string_view(pool).substr(key.offset, key.length);
  };
  const auto before = [&](const Sort_Key& a, const Sort_Key& b) {
    if (a.prefix != b.prefix) return (a.prefix < b.prefix) == ascending;
    if (const int order = rest(a).compare(rest(b)); order != 0) return (order < 0) == ascending;
    return a.row < b.row;
  };
  // Rows are put in order again and again, and mostly they stand in it.
  if (std::is_sorted(keys.begin(), keys.end(), before)) return Tell();
  std::sort(keys.begin(), keys.end(), before);
  std::vector<GridRow> sorted;
  sorted.reserve(rows_.size());
  for (const Sort_Key& key : keys) sorted.push_back(rows_[key.row]);
  rows_ = std::move(sorted);
  Rows_Changed();
}

}  // namespace tidyfold
