// The preview: who, when, subject and text of the row that has the frame.
#pragma once

#include "grid/item_display.h"

namespace tidyfold {

// What is known of an item is shown at once; its text is fetched when the row has been the current one for a
// moment. Neither waits for anything to be loaded.
class Item_Preview {
 public:
  Item_Preview(MainWindow& window, const FolderData_Array& records, Item_Display& display,
               Error_Handler& errors)
      : window_(window), records_(records), display_(display), errors_(errors) {}

  // Sets the handlers of the menu's entry and of the rows.
  void Wire();

 private:
  void mnuPreview_Click();
  void Follow_Row();
  void Show_Text();
  bool Is_On() const { return window_.mnuPreview.Checked(); }
  // What the grid knows of a row's item; empty where it stands for none.
  std::string Known(const GridRow& row) const;

  MainWindow& window_;
  const FolderData_Array& records_;
  Item_Display& display_;
  Error_Handler& errors_;
  // The item that is shown; empty for none.
  std::string shown_id_;
  bool text_due_ = false;
};

}  // namespace tidyfold
