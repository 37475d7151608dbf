// The grid widget's data source and its cell renderer.
#pragma once

#include <wx/grid.h>

#include "controls/flex_grid.h"

namespace tidyfold {

// A view of the model's rows. Its counts are those that the widget knows, which may lag behind the model's;
// cells beyond the model are empty.
class Grid_Table : public wxGridTableBase {
 public:
  explicit Grid_Table(const FlexGrid& model) : model_(model) {}

  static int Model_Row(int row) { return row + 1; }
  static int Model_Column(int column) { return column + FlexGrid::first_item_column; }

  // Notify the widget of rows or columns appended or removed at the end.
  void Set_Rows(int rows);
  void Set_Columns(int columns);

  bool Has(int row, int column) const;
  const FlexGrid& Model() const { return model_; }

  int GetNumberRows() override { return rows_; }
  int GetNumberCols() override { return columns_; }
  wxString GetValue(int row, int column) override;
  void SetValue(int, int, const wxString&) override {}
  wxString GetColLabelValue(int column) override;

 private:
  void Tell(int was, int is, wxGridTableRequest appended, wxGridTableRequest deleted);

  const FlexGrid& model_;
  int rows_ = 0;
  int columns_ = 0;
};

// Paints a cell by the state of its row: bold, selected, current.
class Grid_Cell_Renderer : public wxGridCellRenderer {
 public:
  explicit Grid_Cell_Renderer(const Grid_Table& table) : table_(table) {}

  void Draw(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, const wxRect& rect, int row, int column,
            bool selected) override;
  wxSize GetBestSize(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, int row, int column) override;
  wxGridCellRenderer* Clone() const override { return new Grid_Cell_Renderer(table_); }

 private:
  const Grid_Table& table_;
};

}  // namespace tidyfold
