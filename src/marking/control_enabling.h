// Which controls can be used when, and the options' default values.
#pragma once

#include "cache/window_updates.h"
#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/protected_folders.h"
#include "plan/phase.h"

namespace tidyfold {

class Control_Enabling : public Command_State {
 public:
  Control_Enabling(MainWindow& window, const Protected_Folders& protection, Program_Phase& phase,
                   Error_Handler& errors)
      : window_(window), protection_(protection), phase_(phase), errors_(errors) {}

  // The phase has changed.
  void Follow_Phase();
  // All controls on or off; while a run is under way the Clean button stays on, as Cancel.
  void Enable_All_Controls(bool enable);
  // Each option's box according to the others; nothing while all controls are off.
  void Enable_Check_Boxes() override;
  // Clean when something is selected, Unmark when a folder is marked; nothing while all controls are off.
  void Enable_Command_Buttons() override;
  // The defaults: nothing permanent, no folders, no filters, every row shown.
  void Set_Checkbox_Values();

 private:
  MainWindow& window_;
  const Protected_Folders& protection_;
  Program_Phase& phase_;
  Error_Handler& errors_;
  bool all_enabled_ = true;
};

}  // namespace tidyfold
