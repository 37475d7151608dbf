#include "desktop/common/grid_table.h"

#include <wx/control.h>
#include <wx/dc.h>
#include <wx/renderer.h>
#include <wx/settings.h>

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

bool Grid_Table::Has(int row, int column) const {
  return row >= 0 && Model_Row(row) < model_.Rows() && column >= 0 && Model_Column(column) < model_.Cols();
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
  wxColour background = Theme_Background();
  bool bold = false;
  wxString text;
  if (table_.Has(row, column)) {
    const GridRow& model_row = table_.Model().Row_At(Grid_Table::Model_Row(row));
    if (model_row.back_colour != system_window_background) background = Theme_Chosen_Background();
    bold = model_row.bold;
    text =
        To_One_Line(table_.Model().TextMatrix(Grid_Table::Model_Row(row), Grid_Table::Model_Column(column)));
  }
  dc.SetPen(*wxTRANSPARENT_PEN);
  dc.SetBrush(background);
  dc.DrawRectangle(rect);

  if (!text.empty()) {
    const int margin = grid.FromDIP(text_margin);
    const wxRect inside = rect.Deflate(margin, 0);
    if (inside.width > 0) {
      dc.SetFont(bold ? attr.GetFont().Bold() : attr.GetFont());
      // IsThisEnabled ignores that a modal box disables the whole window.
      dc.SetTextForeground(grid.IsThisEnabled() ? Text_Colour(0, background)
                                                : Disabled_Text_Colour(background));
      dc.SetBackgroundMode(wxBRUSHSTYLE_TRANSPARENT);
      const wxString shown =
          wxControl::Ellipsize(text, dc, wxELLIPSIZE_END, inside.width, wxELLIPSIZE_FLAGS_NONE);
      dc.DrawText(shown, inside.x, inside.y + (inside.height - dc.GetCharHeight()) / 2);
    }
  }

  // Each cell draws its part of the frame around the current row.
  const bool has_focus = wxWindow::FindFocus() != nullptr && grid.IsDescendant(wxWindow::FindFocus());
  if (has_focus && Grid_Table::Model_Row(row) == table_.Model().Row()) {
    dc.SetPen(wxPen(wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT)));
    dc.DrawLine(rect.GetLeft(), rect.GetTop(), rect.GetRight() + 1, rect.GetTop());
    dc.DrawLine(rect.GetLeft(), rect.GetBottom(), rect.GetRight() + 1, rect.GetBottom());
    if (column == 0) dc.DrawLine(rect.GetLeft(), rect.GetTop(), rect.GetLeft(), rect.GetBottom() + 1);
    if (column == grid.GetNumberCols() - 1)
      dc.DrawLine(rect.GetRight(), rect.GetTop(), rect.GetRight(), rect.GetBottom() + 1);
  }
}

wxSize Grid_Cell_Renderer::GetBestSize(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, int row, int column) {
  dc.SetFont(attr.GetFont());
  wxSize size;
  if (table_.Has(row, column)) {
    size = dc.GetTextExtent(
        To_One_Line(table_.Model().TextMatrix(Grid_Table::Model_Row(row), Grid_Table::Model_Column(column))));
  }
  size.IncBy(2 * grid.FromDIP(text_margin), 0);
  return size;
}

}  // namespace tidyfold
