// What the window looked like when it was left: kept for the next time, and put back to the first state.
#pragma once

#include <functional>
#include <optional>

#include "app/panes.h"
#include "grid/grid_rows.h"
#include "grid/item_preview.h"
#include "settings/user_values.h"

namespace tidyfold {

// Panes, columns, order, which items are shown, and the preview. Options that decide what is deleted always
// start at their safe values.
class Remembered {
 public:
  Remembered(MainWindow& window, Grid_Columns& columns, Grid_Rows& rows, Panes& panes, Registry* registry,
             Error_Handler& errors);

  // Sets the handler of the menu's entry.
  void Wire();
  // Nothing where there is no registry, or nothing in it.
  void Restore();
  void Keep();

 private:
  void mnuResetWindow_Click();
  void Set_Tree_Width(Twips width);

  MainWindow& window_;
  Grid_Columns& columns_;
  Grid_Rows& rows_;
  Panes& panes_;
  Error_Handler& errors_;
  std::optional<User_Values> values_;
  Twips first_tree_width_;
};

}  // namespace tidyfold
