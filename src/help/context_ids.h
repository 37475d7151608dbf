// Which help topic belongs to which control of the main window. The book's map of context identifiers is made
// from this list, line by line.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace tidyfold {

struct Context_Topic {
  std::string_view control;
  int index;  // of a member of a control array; -1: no array
  std::int32_t id;
  std::string_view page;  // inside the book and the site
};

inline constexpr Context_Topic context_topics[] = {
    {"frmRemoveItems", -1, 1000, "controls/frmRemoveItems.html"},
    {"trvFolders", -1, 1001, "controls/trvFolders.html"},
    {"picSlider", -1, 1002, "controls/picSlider.html"},
    {"grdItems", -1, 1003, "controls/grdItems.html"},
    {"picSlider2", -1, 1004, "controls/picSlider2.html"},
    {"lblCurrentFolder", -1, 1005, "controls/lblCurrentFolder.html"},
    {"sbStatusBar", -1, 1006, "controls/sbStatusBar.html"},
    {"frmOptions", -1, 1007, "controls/frmOptions.html"},
    {"cmdRun", -1, 1008, "controls/cmdRun.html"},
    {"cmddebug", -1, 1009, "controls/cmddebug.html"},
    {"txtFind", -1, 1010, "controls/txtFind.html"},
    {"txtPreview", -1, 1011, "controls/txtPreview.html"},
    {"lblScreenOptions", -1, 1100, "controls/lblScreenOptions.html"},
    {"chkMarkSubFolders", -1, 1101, "controls/chkMarkSubFolders.html"},
    {"chkCollapseFolders", -1, 1102, "controls/chkCollapseFolders.html"},
    {"chkShowAllFolders", -1, 1103, "controls/chkShowAllFolders.html"},
    {"chkShowSelectedItems", -1, 1104, "controls/chkShowSelectedItems.html"},
    {"chkShowUnselectedItems", -1, 1105, "controls/chkShowUnselectedItems.html"},
    {"chkSelectByRow", -1, 1106, "controls/chkSelectByRow.html"},
    {"lblProcessingOptions", -1, 1200, "controls/lblProcessingOptions.html"},
    {"chkTurbo", -1, 1201, "controls/chkTurbo.html"},
    {"chkPermanentDelete", -1, 1202, "controls/chkPermanentDelete.html"},
    {"chkConfirmFolders", -1, 1203, "controls/chkConfirmFolders.html"},
    {"chkConfirmItems", -1, 1204, "controls/chkConfirmItems.html"},
    {"chkDeleteFolders", -1, 1205, "controls/chkDeleteFolders.html"},
    {"chkKeepCopy", -1, 1206, "controls/chkKeepCopy.html"},
    {"lblFilterOptions", -1, 1300, "controls/lblFilterOptions.html"},
    {"chkSelectUnread", -1, 1301, "controls/chkSelectUnread.html"},
    {"chkSelectFlagged", -1, 1309, "controls/chkSelectFlagged.html"},
    {"chkSelectDate", -1, 1302, "controls/chkSelectDate.html"},
    {"dtpCutoffDate", -1, 1303, "controls/dtpCutoffDate.html"},
    {"chkSelectSubject", -1, 1304, "controls/chkSelectSubject.html"},
    {"txtSelectSubject", -1, 1305, "controls/txtSelectSubject.html"},
    {"chkMatchCase", -1, 1306, "controls/chkMatchCase.html"},
    {"chkMatchWord", -1, 1307, "controls/chkMatchWord.html"},
    {"chkSelectType", -1, 1308, "controls/chkSelectType.html"},
    {"chkType", 43, 1310, "controls/chkType-mail.html"},
    {"chkType", 26, 1311, "controls/chkType-appointments.html"},
    {"chkType", 40, 1312, "controls/chkType-contacts.html"},
    {"chkType", 42, 1313, "controls/chkType-journals.html"},
    {"chkType", 48, 1314, "controls/chkType-tasks.html"},
    {"chkType", 44, 1315, "controls/chkType-notes.html"},
    {"mnuQuit", -1, 1400, "controls/mnuQuit.html"},
    {"mnuRefresh", -1, 1401, "controls/mnuRefresh.html"},
    {"mnuRefreshCurrent", -1, 1402, "controls/mnuRefreshCurrent.html"},
    {"mnuUnmark", -1, 1403, "controls/mnuUnmark.html"},
    {"mnuClean", -1, 1404, "controls/mnuClean.html"},
    {"mnuResetOptions", -1, 1405, "controls/mnuResetOptions.html"},
    {"mnuHelp", -1, 1406, "controls/mnuHelp.html"},
    {"mnuWhatsThis", -1, 1407, "controls/mnuWhatsThis.html"},
    {"mnuOnlineHelp", -1, 1408, "controls/mnuOnlineHelp.html"},
    {"mnuAbout", -1, 1409, "controls/mnuAbout.html"},
    {"mnuStopLoading", -1, 1410, "controls/mnuStopLoading.html"},
    {"mnuMark", -1, 1411, "controls/mnuMark.html"},
    {"mnuUnmarkFolder", -1, 1412, "controls/mnuUnmarkFolder.html"},
    {"mnuMarkBranch", -1, 1413, "controls/mnuMarkBranch.html"},
    {"mnuSortBy", -1, 1414, "controls/mnuSortBy.html"},
    {"mnuSortReverse", -1, 1415, "controls/mnuSortReverse.html"},
    {"mnuOpenItem", -1, 1416, "controls/mnuOpenItem.html"},
    {"mnuSelectRow", -1, 1417, "controls/mnuSelectRow.html"},
    {"mnuSelectAllRows", -1, 1418, "controls/mnuSelectAllRows.html"},
    {"mnuCopyRows", -1, 1419, "controls/mnuCopyRows.html"},
    {"mnuNextPane", -1, 1420, "controls/mnuNextPane.html"},
    {"mnuPreviousPane", -1, 1421, "controls/mnuPreviousPane.html"},
    {"mnuRuns", -1, 1422, "controls/mnuRuns.html"},
    {"mnuTakeBack", -1, 1423, "controls/mnuTakeBack.html"},
    {"mnuPutBack", -1, 1424, "controls/mnuPutBack.html"},
    {"mnuProtect", -1, 1426, "controls/mnuProtect.html"},
    {"mnuDeletedItemsLimit", -1, 1425, "controls/mnuDeletedItemsLimit.html"},
    {"mnuResetColumns", -1, 1429, "controls/mnuResetColumns.html"},
    {"mnuExport", -1, 1427, "controls/mnuExport.html"},
    {"mnuExportFolder", -1, 1428, "controls/mnuExportFolder.html"},
    {"mnuFind", -1, 1430, "controls/mnuFind.html"},
    {"mnuPreview", -1, 1431, "controls/mnuPreview.html"},
    {"mnuShowSize", -1, 1432, "controls/mnuShowSize.html"},
    {"mnuShowWillGo", -1, 1433, "controls/mnuShowWillGo.html"},
    {"mnuResetWindow", -1, 1434, "controls/mnuResetWindow.html"},
    {"mnuShowAttachments", -1, 1435, "controls/mnuShowAttachments.html"},
};

// The page of a context identifier; empty for one that no control has.
constexpr std::string_view Context_Page(std::int32_t id) {
  const auto found = std::find_if(std::begin(context_topics), std::end(context_topics),
                                  [id](const Context_Topic& topic) { return topic.id == id; });
  return found == std::end(context_topics) ? std::string_view{} : found->page;
}

// The context identifier of a control; 0 where it has none.
constexpr std::int32_t Context_ID(std::string_view control, int index = -1) {
  const auto found = std::find_if(
      std::begin(context_topics), std::end(context_topics),
      [&](const Context_Topic& topic) { return topic.control == control && topic.index == index; });
  return found == std::end(context_topics) ? 0 : found->id;
}

}  // namespace tidyfold
