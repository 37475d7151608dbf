// What the window says of the choice: how much is selected, and why a list is empty.
#pragma once

#include <string>

#include "plan/planner.h"

namespace tidyfold {

class Choice_Status {
 public:
  Choice_Status(MainWindow& window, const FolderData_Array& records, Planner& planner, Error_Handler& errors)
      : window_(window), records_(records), planner_(planner), errors_(errors) {}

  // How many items a run would take, and how large they are, in the status bar.
  void Display_Selected_Items_Total();
  // What stands in an empty list: what to tick, what is not read yet, or which filter keeps how many items
  // out of the folders in view. `current` is the folder that the list shows while Show All Folders is off; 0:
  // none.
  void Display_Empty_Text(int current);

 private:
  std::string Empty_Text(int current) const;

  MainWindow& window_;
  const FolderData_Array& records_;
  Planner& planner_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
