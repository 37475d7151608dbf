#include "controls/main_window.h"

namespace tidyfold {

namespace {

void Place(Control& control, Twips left, Twips top, Twips width, Twips height) {
  control.Set_Left(left);
  control.Set_Top(top);
  control.Set_Width(width);
  control.Set_Height(height);
}

}  // namespace

MainWindow::MainWindow() {
  // 1024 x 680 pixels at 96 DPI: three panes under a label, the button below the options.
  frmRemoveItems.Set_Width(15360);
  frmRemoveItems.Set_Height(10200);
  Place(trvFolders, 120, 510, 3750, 8700);
  Place(picSlider, 3870, 510, 90, 8700);
  Place(grdItems, 3960, 510, 7350, 8700);
  Place(picSlider2, 11310, 510, 90, 8700);
  Place(frmOptions, 11400, 510, 3840, 8115);
  Place(cmdRun, 11400, 8685, 3840, 525);
  Place(lblCurrentFolder, 4035, 120, 11205, 330);
  Place(txtSelectSubject, 300, 0, 3440, 375);
  Place(linOptions1, 75, 0, 3690, 15);
  Place(linOptions2, 75, 0, 3690, 15);

  mnuShowSize.Set_Checked(true);
  mnuShowWillGo.Set_Checked(true);

  controls = {&trvFolders,
              &txtFind,
              &grdItems,
              &chkMarkSubFolders,
              &chkCollapseFolders,
              &chkShowAllFolders,
              &chkShowSelectedItems,
              &chkShowUnselectedItems,
              &chkSelectByRow,
              &chkTurbo,
              &chkPermanentDelete,
              &chkConfirmFolders,
              &chkConfirmItems,
              &chkDeleteFolders,
              &chkKeepCopy,
              &chkSelectUnread,
              &chkSelectFlagged,
              &chkSelectDate,
              &dtpCutoffDate,
              &chkSelectSubject,
              &txtSelectSubject,
              &chkMatchCase,
              &chkMatchWord,
              &chkSelectType};
  for (TypeBox& type : chkType) controls.push_back(&type.box);
  controls.insert(controls.end(), {&cmdRun, &picSlider, &picSlider2, &lblCurrentFolder, &lblScreenOptions,
                                   &lblProcessingOptions, &lblFilterOptions, &frmOptions, &mnuRefresh,
                                   &mnuRefreshCurrent, &mnuClean, &mnuQuit, &mnuUnmark, &mnuResetOptions,
                                   &mnuHelp, &mnuWhatsThis, &mnuOnlineHelp, &mnuAbout});
  controls.insert(
      controls.end(),
      {&mnuStopLoading,   &mnuMark,         &mnuUnmarkFolder,      &mnuMarkBranch,      &mnuProtect,
       &mnuSortReverse,   &mnuResetColumns, &mnuShowSize,          &mnuShowAttachments, &mnuShowWillGo,
       &mnuFind,          &mnuPreview,      &mnuResetWindow,       &mnuOpenItem,        &mnuSelectRow,
       &mnuSelectAllRows, &mnuCopyRows,     &mnuPutBack,           &mnuNextPane,        &mnuPreviousPane,
       &mnuRuns,          &mnuTakeBack,     &mnuDeletedItemsLimit, &mnuExport,          &mnuExportFolder});
  for (MenuItem& field : mnuSortBy) controls.push_back(&field);
}

}  // namespace tidyfold
