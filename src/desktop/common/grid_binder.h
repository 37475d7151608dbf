// The items grid: a window onto the rows of the model, which it never copies.
#pragma once

#include <wx/grid.h>
#include <wx/stattext.h>
#include <wx/timer.h>

#include <cstdint>

#include "controls/flex_grid.h"
#include "desktop/common/context_menu.h"
#include "desktop/common/control_binder.h"
#include "desktop/common/repaint_schedule.h"
#include "desktop/common/scale.h"

namespace tidyfold {

class Grid_Cell_Renderer;
class Grid_Table;

// Shows the model's columns from FlexGrid::first_item_column on; the columns of row key and mark are hidden.
class Grid_Binder : public Control_Binder, public Late_Widget {
 public:
  // `hint` lies over the grid and shows the model's empty text while there are no rows.
  Grid_Binder(FlexGrid& model, wxGrid& widget, wxStaticText& hint, Repaint_Schedule& schedule);
  ~Grid_Binder() override;

  void Catch_Up() override;
  void Follow_Density(int dots_per_inch);
  // Opened by a right click, the menu key and Shift+F10.
  Context_Menu context_menu;
  // Opened by a right click on the header.
  Context_Menu header_menu;

 private:
  void Show_Model() override;
  bool Has_Own_Tips() const override { return true; }

  void Set_Row_Height();
  void Show_Order();
  void Show_Columns();
  void Fill_Width();
  void Show_Row_Count();
  void Show_Hint();
  void Show_Tip(const wxPoint& place);
  void Speak();
  void Watch_Row();
  std::uint64_t Picture_Of_View() const;

  int Row_At(const wxPoint& position) const;
  void Pressed(wxMouseEvent& event);
  void Released(wxMouseEvent& event);
  void Key_Pressed(wxKeyEvent& event);
  void Open_Menu_At_Row();
  void Choose(int row, int shift_state);
  void Make_Current(int row);
  bool Move_By_Key(const wxKeyEvent& event);

  FlexGrid& model_;
  wxGrid& widget_;
  wxStaticText& hint_;
  Repaint_Schedule& schedule_;
  Scale scale_;
  Grid_Table* table_;             // owned by the widget
  Grid_Cell_Renderer* renderer_;  // likewise
  std::uint64_t shown_columns_ = ~std::uint64_t{0};
  std::uint64_t shown_picture_ = 0;
  wxString hint_text_;
  int hint_width_ = 0;
  int tip_row_ = -2, tip_column_ = -2;
  GridRow watched_;
  wxTimer resting_;
};

}  // namespace tidyfold
