// The ways in which a run removes things. Each adds what it removed to the run's counter, notes a failure and
// goes on, and stops at its next test once the run's Processing is false.
#pragma once

#include <map>
#include <string>
#include <unordered_set>

#include "clean/safety_checks.h"
#include "clean/status_line.h"
#include "marking/run_state.h"
#include "outlook/session.h"

namespace tidyfold {

class Deletion_Strategies {
 public:
  Deletion_Strategies(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                      Outlook_Session& session, Item_Filters& filters, Grid_Rows& rows, Safety_Checks& checks,
                      Status_Line& status, Run_State& run, Events& events, Error_Handler& errors);

  // Forgets the run before, and shows on the gauge how much the one that begins has to look at.
  void Begin_Run();
  // Shows on the gauge that a marked folder is passed over.
  void Pass_Over(int index) { status_.Move_Gauge(Work_On(index)); }
  void Clear_Gauge() { status_.Clear_Gauge(); }

  // Removes a folder that has no folders below it any more. A default folder, a store's top folder and one
  // that still holds folders are left alone.
  void Delete_Selected_Folder(int index, int node);
  // Removes every item of a folder for good, without filters and questions.
  void Delete_All_Items(int index);
  // Works on the live items of a folder that is not read to its end.
  void Delete_Selected_Items_By_MAPIFolder(int index);
  // Works on the cached items of a folder.
  void Delete_Filtered_Items_By_FolderData_Array(int node, int index);
  // Works on the rows that are marked in the grid.
  void Delete_Filtered_Items_By_Row();

  // Forgets the folders whose items an earlier run of the strategies has deleted: closes the holes in the
  // cache and takes the rows away, whose keys no longer agree with it.
  void Pack_Folder(int index);

 private:
  struct Outcome {
    bool deleted = false;      // as the options ask: moved, or gone for good
    bool left_folder = false;  // it no longer lies in the folder; its cached record is a hole
  };
  // Runs a strategy's body; one that breaks off has left things undone.
  template <class Body>
  void Run_Strategy(Literal name, Body&& body);
  std::int64_t Work_On(int index);
  Outcome Delete_Current_Item(int index, const std::string& entry_id, const std::string& subject,
                              ProcessError& process_error);
  bool Is_Deleted_Items(int index);
  void Remove_Item(int index, Item& item, const std::string& entry_id, Outcome& outcome);
  Outcome Delete_Cached_Item(int index, std::int32_t item, ProcessError& process_error);
  void Note_Deleted_Records(int index, const std::unordered_set<std::string>& gone);
  std::int32_t Yield_In_Front_Of(Items& items, std::int32_t next);
  bool Is_Beyond_End(Items& items, std::int32_t position);
  void Failed(ProcessError& process_error, std::string_view process, std::string_view item);

  MainWindow& window_;
  TreeView& tree_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Outlook_Session& session_;
  Item_Filters& filters_;
  Grid_Rows& rows_;
  Safety_Checks& checks_;
  Status_Line& status_;
  Run_State& run_;
  Events& events_;
  Error_Handler& errors_;
  std::map<int, bool> is_deleted_items_;  // as far as the run has asked
};

}  // namespace tidyfold
