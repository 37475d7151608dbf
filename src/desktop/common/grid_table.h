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

  // The widget counts the rows that are shown, and from 0; the model's column of pictures is its first.
  int Model_Row(int row) const { return model_.Row_At_Place(row + 1); }
  int Model_Column(int column) const;
  int Widget_Column(int model_column) const;

  // Notify the widget of rows or columns appended or removed at the end.
  void Set_Rows(int rows);
  void Set_Columns(int columns);

  bool Has(int row, int column) const;
  // Whether the column shows pictures alone.
  bool Is_Of_Pictures(int column) const { return column == 0 && model_.Picture_Column() > 0; }
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

// Paints a cell by the state of its row: bold, selected, current; with the model's picture.
class Grid_Cell_Renderer : public wxGridCellRenderer {
 public:
  explicit Grid_Cell_Renderer(const Grid_Table& table) : table_(table) {}

  void Draw(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, const wxRect& rect, int row, int column,
            bool selected) override;
  // Whether the cell's text does not fit into its width.
  bool Cuts(wxGrid& grid, int row, int column) const;
  wxSize GetBestSize(wxGrid& grid, wxGridCellAttr& attr, wxDC& dc, int row, int column) override;
  wxGridCellRenderer* Clone() const override { return new Grid_Cell_Renderer(table_); }

 private:
  const Grid_Table& table_;
};

}  // namespace tidyfold
