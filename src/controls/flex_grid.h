// The model of the items grid.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "controls/control.h"

namespace tidyfold {

// A data row keeps only what ties it to its item and how it is painted; its texts are asked for when they are
// needed, so that a million rows cost a few bytes each.
struct GridRow {
  std::int32_t row_data = 0;  // the number of the item's folder
  std::int32_t item = 0;  // the item's number in its folder, from 1; negative: the row stands for the folder
  bool marked = false;    // what column 1 shows: "1" or "0"
  bool bold = false;
  bool hidden = false;  // the list is narrowed and does not show it
  Colour back_colour = system_window_background;
};

// What stands before a cell's text, or in its place.
enum class Cell_Picture { None, Goes, Attachment, Mail, Appointment, Contact, Task, Journal, Note, Other };

// Supplies the texts of the columns from 2 on.
class Cell_Source {
 public:
  virtual ~Cell_Source() = default;
  virtual std::string Cell_Text(const GridRow& row, int column) const = 0;
  // The same text for sorting many rows: a view of the text, which may lie in `room`.
  virtual std::string_view Sort_Text(const GridRow& row, int column, std::string& room) const = 0;
  virtual Cell_Picture Picture(const GridRow& /*row*/, int /*column*/) const { return Cell_Picture::None; }
};

enum class Sort_Mode { String_Ascending = 7, String_Descending = 8 };

// Row 0 is the header; data rows count from 1. Columns count from 0: column 0 holds the row key, column 1 the
// mark, the rest what the cell source says. Calls that name a row or column that is not there throw
// std::out_of_range.
class FlexGrid : public Control {
 public:
  using Control::Control;

  static constexpr int key_column = 0;
  static constexpr int mark_column = 1;
  static constexpr int first_item_column = 2;

  int Rows() const { return static_cast<int>(rows_.size()) + 1; }
  // Only ever shortens; 1 leaves the header row.
  void Set_Rows(int rows);
  // The most rows that the grid takes, the header included.
  int Capacity() const { return capacity_; }
  void Set_Capacity(int rows) { capacity_ = rows; }

  int Cols() const { return static_cast<int>(headers_.size()); }
  // The header's mark goes with the columns that it stood on.
  void Set_Cols(int columns);
  const std::string& Header(int column) const { return headers_.at(static_cast<std::size_t>(column)); }
  void Set_Header(int column, std::string_view text);
  // Twips.
  Twips Column_Width(int column) const { return widths_.at(static_cast<std::size_t>(column)); }
  void Set_Column_Width(int column, Twips width);
  // The column that stands before all others and shows pictures alone; 0: none.
  int Picture_Column() const { return picture_column_; }
  void Set_Picture_Column(int column) {
    if (std::exchange(picture_column_, column) != column) Columns_Changed();
  }
  // Moves when columns, headers or widths have changed.
  std::uint64_t Column_Version() const { return column_version_; }

  const GridRow& Row_At(int row) const { return rows_.at(static_cast<std::size_t>(row - 1)); }
  std::string TextMatrix(int row, int column) const;
  std::int32_t RowData(int row) const { return Row_At(row).row_data; }

  // Appends a row; false when the grid can take no more.
  bool Add_Item(const GridRow& row);
  void Set_Mark(int row, bool marked);
  // Sets every row's mark and the colour that goes with it, telling of it once.
  template <class Predicate>
  void Set_Marks(Predicate&& marked, Colour marked_colour, Colour other_colour) {
    bool any = false;
    for (GridRow& row : rows_) {
      const bool mark = marked(row);
      const Colour colour = mark ? marked_colour : other_colour;
      if (row.marked == mark && row.back_colour == colour) continue;
      marked_rows_ += static_cast<int>(mark) - static_cast<int>(row.marked);
      row.marked = mark;
      row.back_colour = colour;
      any = true;
    }
    if (any) Rows_Changed();
  }
  // Rows whose mark is "1".
  int Marked_Rows() const { return marked_rows_; }
  void Set_Paint(int row, bool bold, Colour back_colour);
  // Removes every row for which the predicate says so; the others keep their order.
  template <class Predicate>
  void Remove_Rows_If(Predicate&& predicate) {
    std::size_t seen = 0, ordered = 0;
    const auto removed = std::erase_if(rows_, [&](const GridRow& row) {
      const bool goes = predicate(row);
      ordered += seen++ < in_order_ && !goes ? 1 : 0;
      marked_rows_ -= goes && row.marked ? 1 : 0;
      return goes;
    });
    if (removed == 0) return;
    in_order_ = ordered;
    if (row_ >= Rows()) row_ = 0;
    Rows_Changed();
  }
  // The platform's string sort on one column, case-sensitive; rows with equal texts keep their order.
  void Sort(int column, Sort_Mode mode);
  // The same result where only rows were added or removed since the last sort and no text has changed. Then
  // it costs little more than the new rows do.
  void Sort_New_Rows(int column, Sort_Mode mode);
  // Which column the header's mark stands on (0: none) and its direction.
  int Sort_Column() const { return sort_column_; }
  bool Sorted_Ascending() const { return sorted_ascending_; }

  // Moves whenever a row came, went, moved or changed its look.
  std::uint64_t Row_Version() const { return row_version_; }

  // Narrows what the front end shows; every row keeps its number, its mark and its place. An empty filter
  // shows all rows.
  void Narrow(std::function<bool(const GridRow&)> filter);
  bool Is_Narrowed() const { return filter_ != nullptr; }
  // Rows that are shown, and which row stands at a place among them. Places count from 1.
  int Shown_Rows() const;
  int Row_At_Place(int place) const;
  // 0 for a row that is not shown.
  int Place_Of(int row) const;

  // What stands in the grid's place while it has no rows; lines end in CR LF.
  const std::string& Empty_Text() const { return empty_text_; }
  void Set_Empty_Text(std::string_view text) {
    if (empty_text_ == text) return;
    empty_text_ = text;
    Tell();
  }

  bool Redraw() const { return redraw_; }
  // While off, the front end is told nothing; switching it on tells it once if anything has changed.
  void Set_Redraw(bool redraw);

  // The current cell's row, set by the front end; 0 where there is none.
  int Row() const { return row_; }
  void Set_Row(int row) { row_ = row; }
  bool Has_Row() const { return row_ >= 1 && row_ < Rows() && !Row_At(row_).hidden; }
  // The row under the mouse, set by the front end before it raises a mouse event; below 1: no data row.
  int MouseRow() const { return mouse_row_; }
  void Set_MouseRow(int row) { mouse_row_ = row; }

  // Set on a selected range, a colour applies to all of it (1) or to the current cell (0).
  int Fill_Style = 0;
  Colour Back_Colour = system_window_background, Fore_Colour = 0;
  Colour Back_Colour_Selected = 0, Fore_Colour_Selected = 0;

  std::function<void(int button)> MouseDown;
  // Button 1 is the left one; shift state 1 is Shift, 2 is Ctrl; x and y are twips.
  std::function<void(int button, int shift, Twips x, Twips y)> MouseUp;
  std::function<void()> DblClick;
  std::function<void(int key_code)> KeyPress;
  std::function<void(int column)> Header_Click;
  // A person has given a column another width.
  std::function<void(int column)> Column_Sized;
  // The front end shows the rows as they are now, at the pace of repainting.
  std::function<void()> Row_Shown;
  // The current row has been the same for a moment.
  std::function<void()> Row_Rests;

  const Cell_Source* cells = nullptr;

 private:
  GridRow& At(int row) { return rows_.at(static_cast<std::size_t>(row - 1)); }
  void Rows_Changed();
  void Count_Marks();
  const std::vector<int>& Places() const;
  void Columns_Changed();
  void Tell();
  // False where the rows stood in order already.
  bool Put_In_Order(std::vector<GridRow>& rows, int column, bool ascending) const;
  // A view of the cell's text, which may lie in `room`.
  std::string_view Text_To_Sort(const GridRow& row, int column, std::string& room) const;

  std::vector<GridRow> rows_;
  std::vector<std::string> headers_;
  std::vector<Twips> widths_;
  int capacity_ = 16'000'000;
  int marked_rows_ = 0;
  int row_ = 0, mouse_row_ = 0;
  std::string empty_text_;
  std::function<bool(const GridRow&)> filter_;
  // The rows that are shown, as of a row version; made when they are asked for.
  mutable std::vector<int> places_;
  mutable std::uint64_t places_version_ = ~std::uint64_t{0};
  int picture_column_ = 0;
  int sort_column_ = 0;
  bool sorted_ascending_ = true;
  std::size_t in_order_ = 0;  // this many rows, from the first, stand as they were sorted
  bool redraw_ = true;
  bool untold_ = false;
  std::uint64_t row_version_ = 0, column_version_ = 0;
};

// While it stands, the front end is told nothing of the grid's changes. They nest.
class No_Redraw {
 public:
  explicit No_Redraw(FlexGrid& grid) : grid_(grid), before_(grid.Redraw()) { grid.Set_Redraw(false); }
  No_Redraw(const No_Redraw&) = delete;
  No_Redraw& operator=(const No_Redraw&) = delete;
  ~No_Redraw() { grid_.Set_Redraw(before_); }

 private:
  FlexGrid& grid_;
  bool before_;
};

// The key of a row: the folder's number as at least three digits, "-", the item's as at least five; the
// folder part alone when the item number is negative.
std::string Row_Key(std::int32_t folder, std::int32_t item);

}  // namespace tidyfold
