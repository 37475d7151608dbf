#include "app/tooltips.h"

#include <utility>

namespace tidyfold {

void Load_Tooltips(MainWindow& window, Error_Handler& errors) {
  errors.Run("Load_Tooltips", [&] {
    MainWindow& w = window;
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
        {&w.chkKeepCopy, "Keep a copy of what is deleted for good in a folder that you choose."},
        {&w.lblFilterOptions, "Options controlling which records are deleted."},
        {&w.chkSelectUnread, "Remove unread items."},
        {&w.chkSelectFlagged, "Remove mail that is flagged for follow-up."},
        {&w.chkSelectDate, "Remove only items as old or older than the indicated date."},
        {&w.chkSelectSubject, "Remove only items matching indicated subject line."},
        {&w.chkSelectType, "Remove only items of selected type(s)."},
        {&w.txtSelectSubject, "Enter text then press <Tab> or <Enter> to change filter."},
        {&w.dtpCutoffDate,
         "Type a date, pick it from the calendar (Alt+Down) or\r\n"
         "use arrow keys to change it, then press <Tab> or <Enter> to change filter."},
        {&w.chkMatchCase, "Case must match to select item."},
        {&w.chkMatchWord, "Entire subject line must be entered to select item."},
        {&w.cmdRun, "Start cleaning."},
    };
    for (const auto& [control, text] : texts) control->Set_Tool_Tip_Text(text);
    for (PictureBox* bar : {&w.picSlider, &w.picSlider2})
      bar->Set_Tool_Tip_Text("Re-sizing bar - click, hold and drag");
  });
}

}  // namespace tidyfold
