// Opening the item that a row stands for.
#pragma once

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_data.h"
#include "outlook/session.h"

namespace tidyfold {

class Item_Display {
 public:
  Item_Display(MainWindow& window, FolderData_Array& records, Outlook_Session& session,
               Message_Box& message_box, Error_Handler& errors)
      : window_(window),
        grid_(window.grdItems),
        records_(records),
        session_(session),
        message_box_(message_box),
        errors_(errors) {}

  // Sets the handlers of the grid and of the menu's command.
  void Wire();
  // Opens the item of CurrentRow in a window of its own; a message when it is gone.
  void Display_Current_Item();

  // The same for the row that the keyboard is at.
  void mnuOpenItem_Click();

  // The item of a row, or none where the row shows none or the store has it no longer. Reports nothing.
  Item_Ptr Fetch(const GridRow& row);

  // The row that the mouse was last pressed on; Enter opens this one too, wherever the keyboard has moved.
  int CurrentRow = 0;

 private:
  void Display_Row(int at);
  bool Shows_Item(const GridRow& row) const;

  MainWindow& window_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Outlook_Session& session_;
  Message_Box& message_box_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
