// The ways in which a run removes things. Each adds what it removed to the run's counter, notes a failure and
// goes on, and stops at its next test once the phase is no longer Cleaning.
//
// A change that a store has made is not yet kept: stores keep changes in groups, which end at yields. So what
// a strategy does comes in two steps. At once, the item's cached record becomes a hole, so that nothing takes
// it a second time. When the group has ended, the change counts, or the record is put back. Every hundred
// items a strategy settles what is due, and at its end what is pending, so that its numbers are true.
#pragma once

#include <string>

#include "clean/item_removal.h"
#include "clean/status_line.h"
#include "grid/grid_rows.h"

namespace tidyfold {

class Deletion_Strategies {
 public:
  Deletion_Strategies(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                      Grid_Rows& rows, Item_Removal& removal, Run_Journal& journal, Status_Line& status,
                      Run_State& run, Program_Phase& phase, Events& events, Error_Handler& errors);

  // Shows on the gauge how much the run that begins has to look at.
  void Begin_Run(const Clean_Plan& plan);
  // Shows on the gauge that a folder is passed over.
  void Pass_Over(const Plan_Stop& stop) { status_.Move_Gauge(Work_On(stop)); }
  void Clear_Gauge() { status_.Clear_Gauge(); }

  // Removes a folder that has no folders below it any more. A default folder, a store's top folder and one
  // that still holds folders are left alone.
  void Delete_Selected_Folder(const Plan_Stop& stop);
  // Removes every item of a folder for good, without filters and questions.
  void Delete_All_Items(const Plan_Stop& stop);
  // Works on the live items of a folder that is not read to its end.
  void Delete_Selected_Items_By_MAPIFolder(const Plan_Stop& stop, const Run_Options& options);
  // Works on the cached items of a folder.
  void Delete_Filtered_Items_By_FolderData_Array(const Plan_Stop& stop);
  // Works on the rows that are picked in the grid.
  void Delete_Filtered_Items_By_Row(const Clean_Plan& plan);

  // Closes the holes in the cache that a strategy has left, and takes the rows away, whose keys no longer
  // agree with it.
  void Pack_Folder(int folder);

 private:
  // Runs a strategy's body; one that breaks off has left things undone. Nothing is pending afterwards.
  template <class Body>
  void Run_Strategy(Literal name, Body&& body);
  // Nothing more can be kept or written down: the run ends, and says why.
  void End_If_Useless();
  std::int64_t Work_On(const Plan_Stop& stop);
  bool Delete_Cached_Item(int folder, const Planned_Item& planned, ProcessError& process_error,
                          std::function<void()> put_back);
  bool Is_Beyond_End(Items& items, std::int32_t position);
  void Show_Progress(int folder, const std::string& name, std::int32_t checked);
  void Remove_Folder(const Plan_Stop& stop, MAPIFolder& folder, Folders& siblings);

  MainWindow& window_;
  TreeView& tree_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Grid_Rows& rows_;
  Item_Removal& removal_;
  Run_Journal& journal_;
  Status_Line& status_;
  Run_State& run_;
  Program_Phase& phase_;
  Events& events_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
