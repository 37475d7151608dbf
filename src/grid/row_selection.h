// Picking rows by hand: with Select By Row on, a row's mark is the person's choice and is kept nowhere else.
#pragma once

#include "grid/grid_rows.h"
#include "outlook/deleted_items.h"

namespace tidyfold {

class Row_Selection {
 public:
  Row_Selection(MainWindow& window, Protected_Folders& protection, Deleted_Items_Folders& deleted_items,
                Grid_Rows& rows, Command_State& commands, Message_Box& message_box, Error_Handler& errors);

  // Sets the handlers of the option's box, of the grid's mouse and of the menu's commands on rows.
  void Wire();

  void chkSelectByRow_Click();
  // Button 1 is the left one; shift state 0, 1 (Shift) or 2 (Ctrl). The only place where a click changes
  // marks.
  void grdItems_MouseUp(int button, int shift);
  // Makes exactly the rows first..last selected.
  void Mark_And_Unmark_Selected_Range(int first, int last);
  // Turns the mark of one row.
  void Select_Or_Unselect(int row);
  // The row that the keyboard is at, as by Ctrl-click.
  void mnuSelectRow_Click();
  // Every row that may be selected; a message when some may not.
  void mnuSelectAllRows_Click();
  // Puts the rows that are picked by hand, or the one that the keyboard is at, on the clipboard: columns
  // separated by tabs.
  void mnuCopyRows_Click();

  // The row of the last plain click or Ctrl-click, from which a Shift-click selects; 0 for none, or when it
  // shows another item by now.
  int Anchor() const;
  void Set_Anchor(int row);

 private:
  // What keeps a folder's items from being picked.
  enum class Barrier { None, Protection, Deleted_Items };
  Barrier Barrier_Of(const GridRow& row);

  MainWindow& window_;
  FlexGrid& grid_;
  Protected_Folders& protection_;
  Deleted_Items_Folders& deleted_items_;
  Grid_Rows& rows_;
  Command_State& commands_;
  Message_Box& message_box_;
  Error_Handler& errors_;
  int anchor_ = 0;
  GridRow anchor_row_;
};

}  // namespace tidyfold
