// What the grid's columns show in each of its views.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_data.h"

namespace tidyfold {

// The logical fields of a row; a view shows some of them, from column 2 on.
enum class Grid_Field {
  Folder = 0,
  Type_Name = 1,
  Sender = 2,
  Subject = 3,
  Entry = 4,
  Item_Date = 5,
  Size = 6,
  Will_Go = 7,
  Attachments = 8
};

// The text of the type column for an item class.
std::string Type_Name(std::int32_t item_class);

class Grid_Columns : public Cell_Source {
 public:
  Grid_Columns(MainWindow& window, FolderData_Array& records, Error_Handler& errors)
      : window_(window), grid_(window.grdItems), records_(records), errors_(errors) {
    grid_.cells = this;
    grid_.Column_Sized = [this](int column) {
      by_hand_.at(static_cast<std::size_t>(Get_Sort_Field(column))) = grid_.Column_Width(column);
    };
    window_.mnuResetColumns.Click = [this] { mnuResetColumns_Click(); };
    window_.mnuShowSize.Click = [this] { Show_Or_Hide(window_.mnuShowSize); };
    window_.mnuShowAttachments.Click = [this] { Show_Or_Hide(window_.mnuShowAttachments); };
    window_.mnuShowWillGo.Click = [this] { Show_Or_Hide(window_.mnuShowWillGo); };
  }

  // The current folder's default item type; with Show All Folders off it chooses the view.
  std::int32_t CurrentGridItemType = 0;

  // Sets count, headers and widths of the columns for the current view.
  void Set_Grid_Columns();
  // Spreads the grid's width over the columns. Those that a person has sized keep their width, in every view,
  // and none shrinks to nothing; then the grid is wider than its pane.
  void Set_Column_Widths();
  void Reset_Column_Widths();
  // Gives up the widths that a person has set.
  void mnuResetColumns_Click();
  // The width that a person has given a field's column, in twips; 0: none.
  Twips Width_By_Hand(Grid_Field field) const { return by_hand_.at(static_cast<std::size_t>(field)); }
  void Set_Width_By_Hand(Grid_Field field, Twips width) {
    by_hand_.at(static_cast<std::size_t>(field)) = width;
  }
  // Runs when other columns are shown.
  std::function<void()> Columns_Exchanged;

  // The column that shows a field; the column count where the view does not show it.
  int Get_Sort_Column(Grid_Field field) const;
  // The field that a column shows; the type name for a column that shows none.
  Grid_Field Get_Sort_Field(int column) const;

  std::string Cell_Text(const GridRow& row, int column) const override;
  std::string_view Sort_Text(const GridRow& row, int column, std::string& room) const override;
  Cell_Picture Picture(const GridRow& row, int column) const override;
  std::string Field_Text(const GridRow& row, Grid_Field field) const;

 private:
  void Show_Or_Hide(MenuItem& column);
  // The item of a row; none where a run has deleted it or nothing has been read.
  const ItemData* Item_Of(const GridRow& row) const;

  MainWindow& window_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Error_Handler& errors_;
  std::array<Twips, 9> by_hand_{};  // by field; 0 where nobody has set a width
};

}  // namespace tidyfold
