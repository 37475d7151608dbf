// Keep a Copy First: a run that deletes for good writes what it takes to a folder of the person's, reads it
// back, and only then begins.
#pragma once

#include <string>
#include <vector>

#include "clean/run_state.h"
#include "clean/status_line.h"
#include "controls/interaction.h"
#include "outlook/folder_data.h"
#include "outlook/item_copies.h"
#include "plan/clean_plan.h"
#include "plan/phase.h"

namespace tidyfold {

class Copy_First {
 public:
  // Without `copies`, as with Outlook's own stores, the option does not show, and a run that asks for one
  // ends.
  Copy_First(MainWindow& window, FolderData_Array& records, Item_Copies* copies, Status_Line& status,
             Run_State& run, Program_Phase& phase, Message_Box& message_box, Events& events,
             Error_Handler& errors);

  // Sets the option's handler.
  void Wire();

  // False when the run must not begin: the copy failed, which is told, or was cancelled. A run that deletes
  // nothing for good needs none. Of a folder that is not read to its end, all is copied that could go.
  bool Keep(const Clean_Plan& plan);

 private:
  void chkKeepCopy_Click();
  std::vector<Folder_To_Copy> To_Copy(const Clean_Plan& plan) const;

  MainWindow& window_;
  FolderData_Array& records_;
  Item_Copies* copies_;
  Status_Line& status_;
  Run_State& run_;
  Program_Phase& phase_;
  Message_Box& message_box_;
  Events& events_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
