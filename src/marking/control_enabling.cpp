#include "marking/control_enabling.h"

#include <utility>

namespace tidyfold {

void Control_Enabling::Enable_All_Controls(bool enable) {
  errors_.Run("Enable_All_Controls", [&] {
    all_enabled_ = enable;
    // Cancel is never off, not even for a moment, in which it would lose the keyboard. Quit only tells the
    // loops to end.
    for (Control* control : window_.controls)
      control->Set_Enabled(enable || control == &window_.mnuQuit ||
                           (run_.Processing && control == &window_.cmdRun));
    if (run_.Processing) {
      window_.cmdRun.Set_Caption("&Cancel");
    } else {
      window_.cmdRun.Set_Caption("&Clean");
    }
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
    const int marked_folders = Count_Selected_Nodes();
    const int selected = window_.chkSelectByRow.Checked() ? rows_.Get_Rows_Selected_Count() : marked_folders;
    window_.cmdRun.Set_Enabled(selected >= 1);
    window_.mnuClean.Set_Enabled(selected >= 1);
    window_.mnuUnmark.Set_Enabled(marked_folders >= 1);
    const TreeView& tree = window_.trvFolders;
    const int node = tree.Selected_Item();
    window_.mnuMark.Set_Enabled(node != 0 && !tree.Checked(node));
    window_.mnuUnmarkFolder.Set_Enabled(node != 0 && tree.Checked(node));
    window_.mnuMarkBranch.Set_Enabled(node != 0 && tree.Children(node) > 0);
    window_.mnuStopLoading.Set_Enabled(Loading());
    for (MenuItem* entry : {&window_.mnuSelectRow, &window_.mnuSelectAllRows})
      entry->Set_Enabled(window_.chkSelectByRow.Checked() && window_.grdItems.Rows() > 1);
    rows_.Display_Sort_Menu();
    rows_.Display_Selected_Items_Total();
    rows_.Display_Empty_Text();
  });
}

void Control_Enabling::Load_Tooltips() {
  errors_.Run("Load_Tooltips", [&] {
    MainWindow& w = window_;
    const std::pair<Control*, const char*> texts[] = {
        {&w.trvFolders, "Folder Tree - Click on check boxes to select folders"},
        {&w.grdItems, "Items List - check Select By Row to enable"},
        {&w.lblCurrentFolder, "Current Folder"},
        {&w.lblScreenOptions, "Options controlling screen behaviour"},
        {&w.chkMarkSubFolders, "Mark all sub folders."},
        {&w.chkCollapseFolders, "Allow marked sub folders to be collapsed and hidden."},
        {&w.chkShowAllFolders, "Show items from all selected folders"},
        {&w.chkShowSelectedItems, "Show selected items"},
        {&w.chkShowUnselectedItems, "Show unselected items"},
        {&w.chkSelectByRow, "Enable select by row"},
        {&w.lblProcessingOptions, "Options controlling how records are processed"},
        {&w.chkTurbo, "Specify maximum processing speed."},
        {&w.chkPermanentDelete, "Permanently remove items."},
        {&w.chkConfirmFolders, "Confirm each folder before processing."},
        {&w.chkConfirmItems, "Confirm each item before removal."},
        {&w.chkDeleteFolders, "Permanently delete selected folders."},
        {&w.lblFilterOptions, "Options controlling which records are deleted."},
        {&w.chkSelectUnread, "Remove unread items."},
        {&w.chkSelectDate, "Remove only items as old or older than the indicated date."},
        {&w.chkSelectSubject, "Remove only items matching indicated subject line."},
        {&w.chkSelectType, "Remove only items of selected type(s)."},
        {&w.txtSelectSubject, "Enter text then press <Tab> or <Enter> to change filter."},
        {&w.dtpCutoffDate,
         "Click drop down box to pick date or \r\n"
         "use arrow keys to change date then press <Tab> or <Enter> to change filter."},
        {&w.chkMatchCase, "Case must match to select item."},
        {&w.chkMatchWord, "Entire subject line must be entered to select item."},
        {&w.cmdRun, "Start cleaning."},
    };
    for (const auto& [control, text] : texts) control->Set_Tool_Tip_Text(text);
    for (PictureBox* bar : {&w.picSlider, &w.picSlider2})
      bar->Set_Tool_Tip_Text("Re-sizing bar - click, hold and drag");
  });
}

void Control_Enabling::Set_Checkbox_Values() {
  errors_.Run("Set_Checkbox_Values", [&] {
    MainWindow& w = window_;
    for (CheckBox* off : {&w.chkDeleteFolders, &w.chkTurbo, &w.chkSelectByRow, &w.chkPermanentDelete,
                          &w.chkConfirmFolders, &w.chkConfirmItems, &w.chkMarkSubFolders,
                          &w.chkCollapseFolders, &w.chkShowAllFolders, &w.chkSelectUnread, &w.chkSelectDate,
                          &w.chkSelectSubject, &w.chkMatchCase, &w.chkMatchWord, &w.chkSelectType})
      off->Set_Value(0);
    for (TypeBox& type : w.chkType) type.box.Set_Value(0);
    w.chkShowSelectedItems.Set_Value(1);
    w.chkShowUnselectedItems.Set_Value(1);
    Enable_Check_Boxes();
  });
}

}  // namespace tidyfold
