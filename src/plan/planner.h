// Makes the plan from marks, picked rows, records and options. Keeps each folder's part of it until the
// folder or the filter changes, so that a tick costs the folders that it ticks, not all items.
#pragma once

#include <cstdint>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_tree.h"
#include "plan/clean_plan.h"

namespace tidyfold {

class Planner {
 public:
  Planner(MainWindow& window, FolderData_Array& records, const Filter_In_Force& filter, Error_Handler& errors)
      : window_(window),
        tree_(window.trvFolders),
        grid_(window.grdItems),
        records_(records),
        filter_(filter),
        errors_(errors) {}

  // The plan as things stand, without the items.
  Clean_Plan Numbers();
  // The plan of a run that begins now: with the items, and with what only the store can tell (how many items
  // a folder holds that is not read to its end). Throws Automation_Error when a folder cannot be counted: it
  // must not be taken for an empty one.
  Clean_Plan Plan_Run();

  // The filter in force.
  const Item_Filter& Filter() const { return filter_.Filter(); }
  // The cached item lies in a marked folder and passes the filter in force.
  bool Check_Filtered_Record(int folder, std::int32_t item) {
    return tree_.Checked(folder) && Passes(folder, item);
  }
  // The same without regard to the mark.
  bool Passes(int folder, std::int32_t item);
  // One for each cached item of the folder, 1 where it passes. Good until the folder or the filter changes.
  const std::vector<char>& Verdicts_Of(int folder) { return Judge(folder).passes; }
  // True when every marked folder is read to its end.
  bool Check_Selected_Folders();

 private:
  enum class Detail { Numbers, Items };

  const Verdicts& Judge(int folder);
  Clean_Plan Make(Detail detail);
  void Plan_Rows(Clean_Plan& plan, Detail detail);
  bool Plan_Branch(Clean_Plan& plan, int folder, Detail detail);
  Plan_Stop Make_Stop(const Clean_Plan& plan, int folder, bool all_below_goes, Detail detail);
  void Count_All(Plan_Stop& stop, Detail detail);
  void Count_Passing(Plan_Stop& stop, Detail detail);
  static void Add(Clean_Plan& plan, Plan_Stop stop);

  MainWindow& window_;
  TreeView& tree_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  const Filter_In_Force& filter_;
  Error_Handler& errors_;
  // The stops of the picked rows, made anew when a row has changed.
  std::uint64_t row_version_ = 0;
  std::vector<Plan_Stop> row_stops_;
};

}  // namespace tidyfold
