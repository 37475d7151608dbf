#include "desktop/common/grid_binder.h"

#include <wx/headerctrl.h>
#include <wx/settings.h>

#include <algorithm>

#include "controls/widgets.h"
#include "desktop/common/accessibility.h"
#include "desktop/common/grid_picture.h"
#include "desktop/common/grid_table.h"
#include "desktop/common/row_words.h"
#include "desktop/common/system_look.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/theme.h"

namespace tidyfold {

namespace {

constexpr int left_button = 1;
constexpr int right_button = 2;
constexpr int shift_key = 1;
constexpr int control_key = 2;
constexpr int enter_key = 13;

// Above and below a row's text, together, in unscaled pixels.
constexpr int row_padding = 8;

// Milliseconds until a row counts as looked at.
constexpr int rest = 120;

int Shift_State(const wxKeyboardState& keys) {
  if (keys.ShiftDown()) return shift_key;
  return keys.ControlDown() ? control_key : 0;
}

// wxGrid has its header painted from a changed column to the header's end. Where the column begins behind
// that end the width is negative, and the library that draws complains (wxWidgets 3.2.2). Makes the header
// longer than any columns meanwhile.
class Long_Header {
 public:
  explicit Long_Header(wxGrid& grid) : header_(*grid.GetGridColHeader()), size_(header_.GetSize()) {
    header_.SetSize(longest, size_.y);
  }
  ~Long_Header() { header_.SetSize(size_); }
  Long_Header(const Long_Header&) = delete;
  Long_Header& operator=(const Long_Header&) = delete;

 private:
  static constexpr int longest = 30000;  // pixels; windows end at 32767

  wxWindow& header_;
  const wxSize size_;
};

}  // namespace

Grid_Binder::Grid_Binder(FlexGrid& model, wxGrid& widget, wxStaticText& hint, Repaint_Schedule& schedule)
    : Control_Binder(model, widget),
      model_(model),
      widget_(widget),
      hint_(hint),
      schedule_(schedule),
      scale_(widget),
      table_(new Grid_Table(model)),
      renderer_(new Grid_Cell_Renderer(*table_)) {
  widget_.SetTable(table_, true, wxGrid::wxGridSelectNone);
  widget_.EnableEditing(false);
  widget_.HideRowLabels();
  widget_.EnableGridLines(false);
  widget_.SetCellHighlightPenWidth(0);
  widget_.SetCellHighlightROPenWidth(0);
  widget_.DisableDragRowSize();
  widget_.EnableHidingColumns(false);
  widget_.SetDefaultRenderer(renderer_);
  widget_.SetDefaultCellFont(widget_.GetFont());
  Set_Row_Height();
  widget_.SetDefaultCellBackgroundColour(Theme_Background());
  widget_.SetLabelFont(widget_.GetFont());
  widget_.SetColLabelAlignment(wxALIGN_LEFT, wxALIGN_CENTRE);
  widget_.SetColMinimalAcceptableWidth(widget_.FromDIP(24));
  widget_.UseNativeColHeader();
  hint_.SetSize(wxRect());

  wxWindow& area = *widget_.GetGridWindow();
  for (const auto& press : {wxEVT_LEFT_DOWN, wxEVT_RIGHT_DOWN}) area.Bind(press, &Grid_Binder::Pressed, this);
  for (const auto& release : {wxEVT_LEFT_UP, wxEVT_RIGHT_UP})
    area.Bind(release, &Grid_Binder::Released, this);
  area.Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent& event) {
    model_.Set_MouseRow(Row_At(event.GetPosition()));
    Raise(model_.DblClick);
  });
  for (wxWindow* const part : {static_cast<wxWindow*>(&widget_), &area})
    part->Bind(wxEVT_KEY_DOWN, &Grid_Binder::Key_Pressed, this);
  for (const auto& focus : {wxEVT_SET_FOCUS, wxEVT_KILL_FOCUS}) {
    area.Bind(focus, [this](wxFocusEvent& event) {
      event.Skip();
      // A person who comes by keyboard sees which row the keys start from.
      if (event.GetEventType() == wxEVT_SET_FOCUS && !model_.Has_Row() && model_.Shown_Rows() > 0)
        Make_Current(model_.Row_At_Place(1));
      widget_.GetGridWindow()->Refresh();
    });
  }
  area.Bind(wxEVT_MOTION, [this](wxMouseEvent& event) {
    event.Skip();
    Show_Tip(event.GetPosition());
  });
  resting_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Raise(model_.Row_Rests); });
  area.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    From_Program([this] { Fill_Width(); });
    Show_Hint();
  });
  // The model sorts; the widget must not sort or mark anything itself.
  widget_.Bind(wxEVT_GRID_COL_SORT, [this](wxGridEvent& event) {
    event.Veto();
    Raise(model_.Header_Click, table_->Model_Column(event.GetCol()));
  });
  widget_.Bind(wxEVT_GRID_COL_SIZE, [this](wxGridSizeEvent& event) {
    event.Skip();
    const int column = event.GetRowOrCol();
    From_User([&] {
      if (table_->Model_Column(column) >= model_.Cols()) return;
      model_.Set_Column_Width(table_->Model_Column(column), scale_.To_Twips(widget_.GetColSize(column)));
      Raise(model_.Column_Sized, table_->Model_Column(column));
    });
  });
  // The toolkit's own menu would hide columns, which the model does not know.
  widget_.GetGridColHeader()->Bind(wxEVT_HEADER_RIGHT_CLICK, [this](wxHeaderCtrlEvent&) {
    if (model_.Enabled())
      Show_Context_Menu(widget_, header_menu, widget_.ScreenToClient(wxGetMousePosition()));
  });
  Show();
}

Grid_Binder::~Grid_Binder() {
  schedule_.Forget(*this);
}

void Grid_Binder::Show_Model() {
  schedule_.Mark(*this);
}

void Grid_Binder::Catch_Up() {
  if (!widget_.IsShown()) return;
  From_Program([this] {
    Show_Row_Count();
    if (shown_columns_ != model_.Column_Version()) Show_Columns();
    Show_Order();
    if (const std::uint64_t picture = Picture_Of_View(); picture != shown_picture_) {
      shown_picture_ = picture;
      widget_.GetGridWindow()->Refresh();
    }
    Show_Hint();
    Speak();
  });
  Raise(model_.Row_Shown);
  Watch_Row();
}

// What a screen reader says; its name is that of the window that has the keyboard.
void Grid_Binder::Speak() {
  Set_Spoken_Name(*widget_.GetGridWindow(), To_One_Line(Words_Of_List(model_)), Spoken_As::List);
  if (model_.Cols() > FlexGrid::first_item_column)
    Set_Spoken_Name(*widget_.GetGridColHeader(), To_One_Line(Words_Of_Header(model_)));
}

// Tells when the same row has been the current one for a moment.
void Grid_Binder::Watch_Row() {
  const GridRow row = model_.Has_Row() ? model_.Row_At(model_.Row()) : GridRow();
  if (row.row_data == watched_.row_data && row.item == watched_.item) return;
  watched_ = row;
  resting_.StartOnce(rest);
}

void Grid_Binder::Set_Row_Height() {
  widget_.SetDefaultRowSize(widget_.GetCharHeight() + widget_.FromDIP(row_padding), true);
}

void Grid_Binder::Follow_Density(int dots_per_inch) {
  scale_.Follow_Density(dots_per_inch);
  Set_Row_Height();
  // The toolkit takes the header for one of its own, which are higher.
  widget_.SetColLabelSize(wxGRID_AUTOSIZE);
  shown_columns_ = ~std::uint64_t{0};
  schedule_.Mark(*this);
}

void Grid_Binder::Show_Row_Count() {
  const int rows = model_.Shown_Rows();
  if (rows != table_->GetNumberRows()) table_->Set_Rows(rows);
}

void Grid_Binder::Show_Order() {
  if (model_.Sort_Column() < FlexGrid::first_item_column || model_.Sort_Column() >= model_.Cols()) return;
  const int column = table_->Widget_Column(model_.Sort_Column());
  if (column == widget_.GetSortingColumn() && model_.Sorted_Ascending() == widget_.IsSortOrderAscending())
    return;
  const Long_Header header(widget_);
  widget_.SetSortingColumn(column, model_.Sorted_Ascending());
}

void Grid_Binder::Show_Columns() {
  const wxGridUpdateLocker freeze(&widget_);
  const Long_Header header(widget_);
  widget_.UnsetSortingColumn();  // the one that bears the mark may go
  table_->Set_Columns(std::max(model_.Cols() - FlexGrid::first_item_column, 0));
  for (int column = 0; column < table_->GetNumberCols(); ++column) {
    const int width = scale_.Pixels(model_.Column_Width(table_->Model_Column(column)));
    widget_.SetColSize(column, std::max(width, widget_.GetColMinimalAcceptableWidth()));
    widget_.SetColLabelValue(column, table_->GetColLabelValue(column));
  }
  shown_picture_ = 0;
  shown_columns_ = model_.Column_Version();
  Fill_Width();
}

// The last column takes the width that the others leave.
void Grid_Binder::Fill_Width() {
  // The size may change while rows or columns are still being added.
  if (shown_columns_ != model_.Column_Version()) return;
  const int last = table_->GetNumberCols() - 1;
  if (last < 0) return;
  int others = 0;
  for (int column = 0; column < last; ++column) others += widget_.GetColSize(column);
  const int wanted = scale_.Pixels(model_.Column_Width(table_->Model_Column(last)));
  const int room = widget_.GetGridWindow()->GetClientSize().x - others;
  if (std::max(wanted, room) == widget_.GetColSize(last)) return;
  const Long_Header header(widget_);
  widget_.SetColSize(last, std::max(wanted, room));
}

// Centres the hint in the empty grid and wraps it. Elsewhere it has no text rather than being hidden: wxGTK
// moves a scrolled window's hidden children with the rows, which GTK complains of (3.2.2).
void Grid_Binder::Show_Hint() {
  const wxString text = table_->GetNumberRows() == 0 ? To_Lines(model_.Empty_Text()) : wxString();
  const wxRect area = widget_.GetGridWindow()->GetClientRect();
  const int width = std::max(area.width * 4 / 5, 1);
  if (text != hint_text_ || width != hint_width_) {
    hint_text_ = text;
    hint_width_ = width;
    hint_.SetLabelText(text);
    hint_.Wrap(width);
  }
  const wxSize size = text.empty() ? wxSize() : hint_.GetBestSize();
  hint_.SetSize(area.x + (area.width - size.x) / 2, area.y + area.height / 3, size.x, size.y);
}

// Changes when anything in view does, so that rows out of sight cost no painting.
std::uint64_t Grid_Binder::Picture_Of_View() const {
  const int height = widget_.GetDefaultRowSize();
  int x = 0, y = 0;
  widget_.CalcUnscrolledPosition(0, 0, &x, &y);
  const int first = y / height;
  const int last =
      std::min(first + widget_.GetGridWindow()->GetClientSize().y / height + 2, model_.Shown_Rows());
  std::uint64_t picture = Picture_Of_Rows(model_, first + 1, last);
  for (const int value : {first, model_.Row(), static_cast<int>(model_.Enabled())})
    picture = picture * 31 + static_cast<std::uint64_t>(value);
  return picture;
}

// The full text of a cell that is cut off; the list's own tip where it is empty.
void Grid_Binder::Show_Tip(const wxPoint& place) {
  const wxPoint inside = widget_.CalcUnscrolledPosition(place);
  const int row = widget_.YToRow(inside.y), column = widget_.XToCol(inside.x);
  if (row == tip_row_ && column == tip_column_) return;
  tip_row_ = row;
  tip_column_ = column;
  wxString text;
  wxRect cell;
  if (row == wxNOT_FOUND || column == wxNOT_FOUND) {
    text = To_Lines(model_.Tool_Tip_Text());
    cell = widget_.GetGridWindow()->GetClientRect();
  } else {
    if (table_->Is_Of_Pictures(column) || renderer_->Cuts(widget_, row, column))
      text = table_->GetValue(row, column);
    cell = widget_.CellToRect(row, column);
    cell.SetPosition(widget_.CalcScrolledPosition(cell.GetPosition()));
  }
  Show_Tip_Beside(*widget_.GetGridWindow(), cell, text);
}

// --- The mouse ------------------------------------------------------------------------------------------

// The model's row under a point of the grid's window; 0 where there is none.
int Grid_Binder::Row_At(const wxPoint& position) const {
  const int row = widget_.YToRow(widget_.CalcUnscrolledPosition(position).y);
  return row == wxNOT_FOUND || !table_->Has(row, 0) ? 0 : table_->Model_Row(row);
}

void Grid_Binder::Pressed(wxMouseEvent& event) {
  widget_.GetGridWindow()->SetFocus();
  const int row = Row_At(event.GetPosition());
  model_.Set_MouseRow(row);
  if (row >= 1) Make_Current(row);
  Raise(model_.MouseDown, event.LeftDown() ? left_button : right_button);
}

void Grid_Binder::Released(wxMouseEvent& event) {
  model_.Set_MouseRow(Row_At(event.GetPosition()));
  Raise(model_.MouseUp, event.LeftUp() ? left_button : right_button, Shift_State(event),
        scale_.To_Twips(event.GetX()), scale_.To_Twips(event.GetY()));
  if (event.RightUp() && model_.Enabled() && model_.MouseRow() >= 1)
    Show_Context_Menu(*widget_.GetGridWindow(), context_menu, event.GetPosition());
}

void Grid_Binder::Make_Current(int row) {
  if (model_.Row() == row) return;
  model_.Set_Row(row);
  schedule_.Mark(*this);
}

// --- The keyboard ---------------------------------------------------------------------------------------

void Grid_Binder::Key_Pressed(wxKeyEvent& event) {
  const int row = model_.Row();
  if (Asks_For_Context_Menu(event)) return Open_Menu_At_Row();
  switch (event.GetKeyCode()) {
    case WXK_RETURN:
    case WXK_NUMPAD_ENTER:
      return Raise(model_.KeyPress, enter_key);
    case WXK_SPACE:
      if (row >= 1) Choose(row, event.ShiftDown() ? shift_key : event.ControlDown() ? control_key : 0);
      return;
    case WXK_TAB:
      widget_.GetGridWindow()->Navigate(event.ShiftDown() ? wxNavigationKeyEvent::IsBackward
                                                          : wxNavigationKeyEvent::IsForward);
      return;
    default:
      if (!Move_By_Key(event)) event.Skip();
  }
}

void Grid_Binder::Open_Menu_At_Row() {
  if (const int row = model_.Place_Of(model_.Row()); row >= 1 && model_.Enabled()) {
    Show_Row_Count();
    widget_.MakeCellVisible(row - 1, 0);
    const wxPoint below =
        widget_.CalcScrolledPosition(widget_.CellToRect(row - 1, 0).GetBottomLeft() + wxPoint(16, 0));
    Show_Context_Menu(*widget_.GetGridWindow(), context_menu, below);
  }
}

// A key does to a row what the mouse button with the same shift state would do.
void Grid_Binder::Choose(int row, int shift_state) {
  if (row >= model_.Rows()) return;
  Make_Current(row);
  model_.Set_MouseRow(row);
  Raise(model_.MouseUp, left_button, shift_state, Twips{0}, Twips{0});
}

bool Grid_Binder::Move_By_Key(const wxKeyEvent& event) {
  const int last = model_.Shown_Rows();
  if (last < 1) return false;
  const int page = std::max(widget_.GetGridWindow()->GetClientSize().y / widget_.GetDefaultRowSize() - 1, 1);
  int row = model_.Place_Of(model_.Row());
  switch (event.GetKeyCode()) {
    case WXK_UP:
      row -= 1;
      break;
    case WXK_DOWN:
      row += 1;
      break;
    case WXK_PAGEUP:
      row -= page;
      break;
    case WXK_PAGEDOWN:
      row += page;
      break;
    case WXK_HOME:
      row = 1;
      break;
    case WXK_END:
      row = last;
      break;
    default:
      return false;
  }
  row = std::clamp(row, 1, last);
  Show_Row_Count();
  Make_Current(model_.Row_At_Place(row));
  widget_.MakeCellVisible(row - 1, -1);
  if (event.ShiftDown()) Choose(model_.Row_At_Place(row), shift_key);
  return true;
}

}  // namespace tidyfold
