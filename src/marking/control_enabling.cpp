#include "marking/control_enabling.h"

namespace tidyfold {

namespace {

constexpr const char* clean_caption = "&Clean";
constexpr const char* cancel_caption = "&Cancel";

}  // namespace

void Control_Enabling::Follow_Phase() {
  const Phase phase = phase_.Now();
  // While a run's questions are open, everything stays as it was: nothing may have come of them.
  if (phase == Phase::Asking) return;
  const bool running = phase == Phase::Cleaning || phase == Phase::Cancelling ||
                       (phase == Phase::Store_Gone && phase_.Is_Run());
  const bool enable = !running && phase != Phase::Building;
  if (enable != all_enabled_ || running != (window_.cmdRun.Caption() == cancel_caption))
    Enable_All_Controls(enable);
  window_.mnuStopLoading.Set_Enabled(all_enabled_ && phase == Phase::Loading);
}

void Control_Enabling::Enable_All_Controls(bool enable) {
  errors_.Run("Enable_All_Controls", [&] {
    all_enabled_ = enable;
    const bool running = !enable && phase_.Is_Run();
    // Cancel is never off, not even for a moment, in which it would lose the keyboard. Quit only tells the
    // loops to end.
    for (Control* control : window_.controls)
      control->Set_Enabled(enable || control == &window_.mnuQuit || (running && control == &window_.cmdRun));
    window_.cmdRun.Set_Caption(running ? cancel_caption : clean_caption);
    Enable_Check_Boxes();
    Enable_Command_Buttons();
  });
}

void Control_Enabling::Enable_Check_Boxes() {
  errors_.Run("Enable_Check_Boxes", [&] {
    if (!all_enabled_) return;
    MainWindow& w = window_;
    const bool by_row = w.chkSelectByRow.Checked(), delete_folders = w.chkDeleteFolders.Checked();
    // Turbo and Delete Folders take everything for good: what narrows a run down has no say then.
    const bool everything = w.chkTurbo.Checked() || delete_folders;
    w.chkMarkSubFolders.Set_Enabled(!delete_folders);
    w.chkCollapseFolders.Set_Enabled(!delete_folders);
    w.chkShowSelectedItems.Set_Enabled(!by_row);
    w.chkShowUnselectedItems.Set_Enabled(!by_row);
    w.chkPermanentDelete.Set_Enabled(!everything);
    w.chkConfirmFolders.Set_Enabled(!by_row);
    w.chkConfirmItems.Set_Enabled(!everything);
    w.chkSelectUnread.Set_Enabled(!everything);
    w.chkSelectFlagged.Set_Enabled(!everything);
    w.chkSelectDate.Set_Enabled(!everything);
    w.chkSelectSubject.Set_Enabled(!everything);
    w.chkSelectType.Set_Enabled(!everything);
    w.dtpCutoffDate.Set_Enabled(!everything && w.chkSelectDate.Checked());
    const bool subject = !everything && w.chkSelectSubject.Checked();
    w.txtSelectSubject.Set_Enabled(subject);
    w.chkMatchCase.Set_Enabled(subject);
    w.chkMatchWord.Set_Enabled(subject);
    for (TypeBox& type : w.chkType) type.box.Set_Enabled(!everything && w.chkSelectType.Checked());
  });
}

void Control_Enabling::Enable_Command_Buttons() {
  errors_.Run("Enable_Command_Buttons", [&] {
    if (!all_enabled_) return;
    const TreeView& tree = window_.trvFolders;
    const FlexGrid& grid = window_.grdItems;
    const bool by_row = window_.chkSelectByRow.Checked();
    const bool any = (by_row ? grid.Marked_Rows() : tree.Checked_Count()) >= 1;
    window_.cmdRun.Set_Enabled(any);
    window_.mnuClean.Set_Enabled(any);
    window_.mnuUnmark.Set_Enabled(tree.Checked_Count() >= 1);
    const int folder = tree.Selected_Item();
    const bool may_be_marked = folder != 0 && !protection_.Is_Protected(folder);
    window_.mnuMark.Set_Enabled(may_be_marked && !tree.Checked(folder));
    window_.mnuUnmarkFolder.Set_Enabled(folder != 0 && tree.Checked(folder));
    window_.mnuExportFolder.Set_Enabled(folder != 0);
    window_.mnuMarkBranch.Set_Enabled(may_be_marked && tree.Children(folder) > 0);
    window_.mnuProtect.Set_Enabled(folder != 0 && protection_.Can_Change(folder));
    window_.mnuProtect.Set_Checked(folder != 0 && protection_.Is_Protected_Itself(folder));
    window_.mnuStopLoading.Set_Enabled(phase_.Now() == Phase::Loading);
    for (MenuItem* entry : {&window_.mnuSelectRow, &window_.mnuSelectAllRows})
      entry->Set_Enabled(by_row && grid.Rows() > 1);
  });
}

void Control_Enabling::Set_Checkbox_Values() {
  errors_.Run("Set_Checkbox_Values", [&] {
    MainWindow& w = window_;
    for (CheckBox* off :
         {&w.chkDeleteFolders, &w.chkTurbo, &w.chkSelectByRow, &w.chkPermanentDelete, &w.chkConfirmFolders,
          &w.chkConfirmItems, &w.chkKeepCopy, &w.chkMarkSubFolders, &w.chkCollapseFolders,
          &w.chkShowAllFolders, &w.chkSelectUnread, &w.chkSelectFlagged, &w.chkSelectDate,
          &w.chkSelectSubject, &w.chkMatchCase, &w.chkMatchWord, &w.chkSelectType})
      off->Set_Value(0);
    for (TypeBox& type : w.chkType) type.box.Set_Value(0);
    w.chkShowSelectedItems.Set_Value(1);
    w.chkShowUnselectedItems.Set_Value(1);
    Enable_Check_Boxes();
  });
}

}  // namespace tidyfold
