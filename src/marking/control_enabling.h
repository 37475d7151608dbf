// Which controls can be used when, what their tooltips say, and their default values.
#pragma once

#include <functional>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "grid/grid_rows.h"
#include "marking/run_state.h"

namespace tidyfold {

class Control_Enabling {
 public:
  Control_Enabling(MainWindow& window, Grid_Rows& rows, const Run_State& run, Error_Handler& errors)
      : window_(window), rows_(rows), run_(run), errors_(errors) {}

  // All controls on or off; while a run is under way the Clean button stays on, as Cancel.
  void Enable_All_Controls(bool enable);
  // Each option's box according to the others; nothing while all controls are off.
  void Enable_Check_Boxes();
  // Clean when something is selected, Unmark when a folder is marked; nothing while all controls are off.
  void Enable_Command_Buttons();
  void Load_Tooltips();
  // The defaults: nothing permanent, no folders, no filters, every row shown.
  void Set_Checkbox_Values();

  std::function<int()> Count_Selected_Nodes;
  // Whether items are being loaded.
  std::function<bool()> Loading;

 private:
  MainWindow& window_;
  Grid_Rows& rows_;
  const Run_State& run_;
  Error_Handler& errors_;
  bool all_enabled_ = true;
};

}  // namespace tidyfold
