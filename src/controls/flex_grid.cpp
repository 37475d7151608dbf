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

void FlexGrid::Narrow(std::function<bool(const GridRow&)> filter) {
  filter_ = std::move(filter);
  for (GridRow& row : rows_) row.hidden = filter_ && !filter_(row);
  Rows_Changed();
}

const std::vector<int>& FlexGrid::Places() const {
  if (std::exchange(places_version_, row_version_) == row_version_) return places_;
  places_.clear();
  for (int row = 1; row < Rows(); ++row)
    if (!Row_At(row).hidden) places_.push_back(row);
  return places_;
}

int FlexGrid::Shown_Rows() const {
  return filter_ ? static_cast<int>(Places().size()) : Rows() - 1;
}

int FlexGrid::Row_At_Place(int place) const {
  return filter_ ? Places().at(static_cast<std::size_t>(place - 1)) : place;
}

int FlexGrid::Place_Of(int row) const {
  if (row < 1 || row >= Rows()) return 0;
  if (!filter_) return row;
  const std::vector<int>& places = Places();
  const auto found = std::lower_bound(places.begin(), places.end(), row);
  return found == places.end() || *found != row ? 0 : static_cast<int>(found - places.begin()) + 1;
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
  in_order_ = std::min(in_order_, rows_.size());
  if (row_ >= Rows()) row_ = 0;
  Count_Marks();
  Rows_Changed();
}

void FlexGrid::Set_Cols(int columns) {
  headers_.resize(static_cast<std::size_t>(columns));
  widths_.resize(headers_.size());
  sort_column_ = 0;
  picture_column_ = 0;
  in_order_ = 0;
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
    rows_.back().hidden = filter_ && !filter_(row);
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

// The beginning of a text as two numbers that order as its bytes do. Dates and most names fit whole, so that
// comparing them never leaves the keys.
struct Sort_Key {
  static constexpr std::size_t prefix_size = 16;

  Sort_Key(std::string_view text, bool ascending, std::uint32_t in_row) : row(in_row) {
    unsigned char bytes[prefix_size] = {};
    std::memcpy(bytes, text.data(), std::min(text.size(), prefix_size));
    for (std::size_t i = 0; i < prefix_size; ++i) {
      std::uint64_t& half = i < prefix_size / 2 ? first : second;
      half = half << 8 | bytes[i];
    }
    if (ascending) return;
    first = ~first;
    second = ~second;
  }
  bool Same_Prefix(const Sort_Key& other) const { return first == other.first && second == other.second; }
  bool operator<(const Sort_Key& other) const {
    if (first != other.first) return first < other.first;
    return second != other.second ? second < other.second : row < other.row;
  }

  std::uint64_t first = 0, second = 0;
  std::uint32_t row;
};

}  // namespace

std::string_view FlexGrid::Text_To_Sort(const GridRow& row, int column, std::string& room) const {
  if (column >= first_item_column)
    return cells == nullptr ? std::string_view() : cells->Sort_Text(row, column, room);
  room = column == key_column ? Row_Key(row.row_data, row.item) : row.marked ? "1" : "0";
  return room;
}

bool FlexGrid::Put_In_Order(std::vector<GridRow>& rows, int column, bool ascending) const {
  std::vector<Sort_Key> keys;
  keys.reserve(rows.size());
  // What of the texts is beyond the keys, one behind the other, and where each begins.
  std::string pool, room;
  std::vector<std::size_t> begins;
  begins.reserve(rows.size() + 1);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string_view text = Text_To_Sort(rows[i], column, room);
    keys.emplace_back(text, ascending, static_cast<std::uint32_t>(i));
    begins.push_back(pool.size());
    pool.append(text.substr(std::min(text.size(), Sort_Key::prefix_size)));
  }
  begins.push_back(pool.size());
  const auto rest_of = [&](const Sort_Key& key) {
    return std::string_view(pool).substr(begins[key.row], begins[key.row + 1] - begins[key.row]);
  };
  // Rows are put in order again and again, and mostly they stand in it.
  const auto before = [&](const Sort_Key& a, const Sort_Key& b) {
    if (!a.Same_Prefix(b)) return a < b;
    const int order = rest_of(a).compare(rest_of(b));
    return order == 0 ? a.row < b.row : (order < 0) == ascending;
  };
  if (std::is_sorted(keys.begin(), keys.end(), before)) return false;
  std::sort(keys.begin(), keys.end());
  // What the keys could not tell apart lies side by side now; only there must the rest be looked at.
  for (auto run = keys.begin(); !pool.empty() && run != keys.end();) {
    const auto end =
        std::find_if(run, keys.end(), [&](const Sort_Key& key) { return !key.Same_Prefix(*run); });
    std::sort(run, end, before);
    run = end;
  }
  std::vector<GridRow> sorted;
  sorted.reserve(rows.size());
  for (const Sort_Key& key : keys) sorted.push_back(rows[key.row]);
  rows = std::move(sorted);
  return true;
}

void FlexGrid::Sort(int column, Sort_Mode mode) {
  sort_column_ = column;
  sorted_ascending_ = mode == Sort_Mode::String_Ascending;
  const bool moved = Put_In_Order(rows_, column, sorted_ascending_);
  in_order_ = rows_.size();
  return moved ? Rows_Changed() : Tell();
}

void FlexGrid::Sort_New_Rows(int column, Sort_Mode mode) {
  const bool ascending = mode == Sort_Mode::String_Ascending;
  if (column != sort_column_ || ascending != sorted_ascending_ || in_order_ == 0) return Sort(column, mode);
  if (in_order_ == rows_.size()) return Tell();
  const auto old_end = rows_.begin() + static_cast<std::ptrdiff_t>(in_order_);
  std::vector<GridRow> added(old_end, rows_.end()), merged;
  Put_In_Order(added, column, ascending);
  merged.reserve(rows_.size());
  std::string room, old_room;
  auto next = rows_.begin();
  for (const GridRow& row : added) {
    const std::string_view text = Text_To_Sort(row, column, room);
    // Of equal rows the old ones stand first.
    const auto stays_before = [&](const GridRow& old) {
      const int order = Text_To_Sort(old, column, old_room).compare(text);
      return order == 0 || (order < 0) == ascending;
    };
    // Steps that double find the neighbourhood with few comparisons where many old rows lie between two new
    // ones, and with hardly any where none do.
    auto low = next, high = next;
    for (std::ptrdiff_t step = 1; high != old_end && stays_before(*high); step *= 2) {
      low = high + 1;
      high = low + std::min(step, old_end - low);
    }
    const auto place = std::partition_point(low, high, stays_before);
    merged.insert(merged.end(), next, place);
    merged.push_back(row);
    next = place;
  }
  merged.insert(merged.end(), next, old_end);
  rows_ = std::move(merged);
  in_order_ = rows_.size();
  Rows_Changed();
}

}  // namespace tidyfold
