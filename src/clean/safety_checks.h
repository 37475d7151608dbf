// What is asked and refused before a run, and before each folder and item of it.
#pragma once

#include "base/clock.h"
#include "clean/deleted_items_limits.h"
#include "clean/run_state.h"
#include "outlook/deleted_items.h"
#include "plan/clean_plan.h"

namespace tidyfold {

class Safety_Checks {
 public:
  Safety_Checks(MainWindow& window, FolderData_Array& records, Deleted_Items_Folders& deleted_items,
                Deleted_Items_Limits& limits, Run_State& run, Message_Box& message_box, Clock& clock,
                Error_Handler& errors);

  // The whole gate before a run; false ends the Clean command before anything has changed.
  bool Check_Screen(const Clean_Plan& plan);
  // Shows what the run would take, folder by folder, and warns of folders that are not loaded. False when the
  // person does not want it.
  bool Confirm_Selection_Count(const Clean_Plan& plan);
  // Refuses a run that would overfill a store's Deleted Items folder.
  bool Check_Deleted_Items_Folder(const Clean_Plan& plan);
  // Yes, No or Cancel; none of them when the folder cannot be asked about, which is reported.
  Answer Confirm_Current_Folder(const Plan_Stop& stop, const Run_Options& options);
  // The same for an item.
  Answer Confirm_Current_Item(Item& item, const Run_Options& options);

 private:
  bool Ask(const std::string& question);
  bool Check_Input(const Run_Options& options);
  Review Make_Review(const Clean_Plan& plan) const;
  std::int64_t Most_That_Could_Go(const Plan_Stop& stop);
  void Say_Overflow(std::int64_t present, std::int64_t selected, std::int32_t limit);

  MainWindow& window_;
  FolderData_Array& records_;
  Deleted_Items_Folders& deleted_items_;
  Deleted_Items_Limits& limits_;
  Run_State& run_;
  Message_Box& message_box_;
  Clock& clock_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
