#include "desktop/common/grid_table.h"

#include <wx/control.h>
#include <wx/dc.h>
#include <wx/renderer.h>
#include <wx/settings.h>

#include "desktop/common/cell_pictures.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/theme.h"

namespace tidyfold {

namespace {

// Between a cell's edge and its text, in unscaled pixels.
constexpr int text_margin = 6;

}  // namespace

void Grid_Table::Tell(int was, int is, wxGridTableRequest appended, wxGridTableRequest deleted) {
  if (GetView() == nullptr || was == is) return;
  if (is > was) {
    wxGridTableMessage message(this, appended, is - was);
    GetView()->ProcessTableMessage(message);
  } else {
    wxGridTableMessage message(this, deleted, is, was - is);
    GetView()->ProcessTableMessage(message);
  }
}

void Grid_Table::Set_Rows(int rows) {
  const int was = std::exchange(rows_, rows);
  Tell(was, rows, wxGRIDTABLE_NOTIFY_ROWS_APPENDED, wxGRIDTABLE_NOTIFY_ROWS_DELETED);
}

void Grid_Table::Set_Columns(int columns) {
  const int was = std::exchange(columns_, columns);
  Tell(was, columns, wxGRIDTABLE_NOTIFY_COLS_APPENDED, wxGRIDTABLE_NOTIFY_COLS_DELETED);
}

int Grid_Table::Model_Column(int column) const {
  const int picture = model_.Picture_Column();
  if (picture == 0) return column + FlexGrid::first_item_column;
  if (column == 0) return picture;
  const int behind = column - 1 + FlexGrid::first_item_column;
  return behind < picture ? behind : behind + 1;
}

int Grid_Table::Widget_Column(int model_column) const {
  const int picture = model_.Picture_Column();
  if (picture == 0) return model_column - FlexGrid::first_item_column;
  if (model_column == picture) return 0;
  return model_column - FlexGrid::first_item_column + (model_column < picture ? 1 : 0);
}

bool Grid_Table::Has(int row, int column) const {
  return row >= 0 && row < model_.Shown_Rows() && column >= 0 && Model_Column(column) < model_.Cols();
}

wxString Grid_Table::GetValue(int row, int column) {
  if (!Has(row, column)) return {};
  return To_One_Line(model_.TextMatrix(Model_Row(row), Model_Column(column)));
}

wxString Grid_Table::GetColLabelValue(int column) {
  const int model_column = Model_Column(column);
  return model_column < model_.Cols() ? To_One_Line(model_.Header(model_column)) : wxString();
}

void Grid_Cell_Renderer::Draw(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, const wxRect& rect, int row,
                              int column, bool) {
  wxColour background = Theme_Background(), ink = Theme_Text();
  bool bold = false;
  wxString text;
  Cell_Picture picture = Cell_Picture::None;
  if (table_.Has(row, column)) {
    const GridRow& model_row = table_.Model().Row_At(table_.Model_Row(row));
    if (model_row.back_colour != system_window_background) {
      background = Theme_Chosen_Background();
      ink = Theme_Chosen_Text();
    }
    bold = model_row.bold;
    if (table_.Model().cells != nullptr)
      picture = table_.Model().cells->Picture(model_row, table_.Model_Column(column));
    if (!table_.Is_Of_Pictures(column) && picture != Cell_Picture::Attachment)
      text = To_One_Line(table_.Model().TextMatrix(table_.Model_Row(row), table_.Model_Column(column)));
  }
  // IsThisEnabled ignores that a modal box disables the whole window.
  if (!grid.IsThisEnabled()) ink = Faded(ink, background);
  dc.SetPen(*wxTRANSPARENT_PEN);
  dc.SetBrush(background);
  dc.DrawRectangle(rect);

  const int margin = grid.FromDIP(text_margin);
  wxRect inside = rect.Deflate(margin, 0);
  if (picture != Cell_Picture::None) {
    const int side = Cell_Picture_Side(grid.GetCharHeight());
    const bool alone = text.empty();
    const wxRect square(alone ? rect.x + (rect.width - side) / 2 : inside.x,
                        rect.y + (rect.height - side) / 2, side, side);
    if (square.width <= rect.width) Draw_Cell_Picture(dc, picture, square, ink);
    inside.SetLeft(inside.x + side + margin);
    inside.width = rect.GetRight() - margin - inside.x + 1;
  }
  if (!text.empty()) {
    if (inside.width > 0) {
      dc.SetFont(bold ? attr.GetFont().Bold() : attr.GetFont());
      dc.SetTextForeground(ink);
      dc.SetBackgroundMode(wxBRUSHSTYLE_TRANSPARENT);
      const wxString shown =
          wxControl::Ellipsize(text, dc, wxELLIPSIZE_END, inside.width, wxELLIPSIZE_FLAGS_NONE);
      dc.DrawText(shown, inside.x, inside.y + (inside.height - dc.GetCharHeight()) / 2);
    }
  }

  // Each cell draws its part of the frame around the current row.
  const bool has_focus = wxWindow::FindFocus() != nullptr && grid.IsDescendant(wxWindow::FindFocus());
  if (has_focus && table_.Has(row, column) && table_.Model_Row(row) == table_.Model().Row()) {
    dc.SetPen(wxPen(ink));
    dc.DrawLine(rect.GetLeft(), rect.GetTop(), rect.GetRight() + 1, rect.GetTop());
    dc.DrawLine(rect.GetLeft(), rect.GetBottom(), rect.GetRight() + 1, rect.GetBottom());
    if (column == 0) dc.DrawLine(rect.GetLeft(), rect.GetTop(), rect.GetLeft(), rect.GetBottom() + 1);
    if (column == grid.GetNumberCols() - 1)
      dc.DrawLine(rect.GetRight(), rect.GetTop(), rect.GetRight(), rect.GetBottom() + 1);
  }
}

bool Grid_Cell_Renderer::Cuts(wxGrid& grid, int row, int column) const {
  if (!table_.Has(row, column)) return false;
  const GridRow& model_row = table_.Model().Row_At(table_.Model_Row(row));
  const wxFont font = grid.GetDefaultCellFont();
  int width = 0, height = 0;
  const wxFont drawn = model_row.bold ? font.Bold() : font;
  grid.GetTextExtent(
      To_One_Line(table_.Model().TextMatrix(table_.Model_Row(row), table_.Model_Column(column))), &width,
      &height, nullptr, nullptr, &drawn);
  width += 2 * grid.FromDIP(text_margin);
  if (table_.Model().cells != nullptr &&
      table_.Model().cells->Picture(model_row, table_.Model_Column(column)) != Cell_Picture::None)
    width += Cell_Picture_Side(grid.GetCharHeight()) + grid.FromDIP(text_margin);
  return width > grid.GetColSize(column);
}

wxSize Grid_Cell_Renderer::GetBestSize(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, int row, int column) {
  dc.SetFont(attr.GetFont());
  wxSize size;
  if (table_.Has(row, column)) {
    size = dc.GetTextExtent(
        To_One_Line(table_.Model().TextMatrix(table_.Model_Row(row), table_.Model_Column(column))));
  }
  size.IncBy(2 * grid.FromDIP(text_margin), 0);
  return size;
}

}  // namespace tidyfold
