// The controls of the main window and of the small windows beside it, by name. Designed positions and
// captions stand here; everything else is set by the procedures.
#pragma once

#include <array>
#include <vector>

#include "controls/flex_grid.h"
#include "controls/tree_view.h"
#include "controls/widgets.h"

namespace tidyfold {

// One member of the control array chkType; the index is the item class that the box stands for.
struct TypeBox {
  int index;
  CheckBox box;
};

struct MainWindow {
  MainWindow();

  Form frmRemoveItems{"frmRemoveItems", "Tidyfold"};

  TreeView trvFolders{"trvFolders"};
  PictureBox picSlider{"picSlider"};
  FlexGrid grdItems{"grdItems"};
  TextBox txtFind{"txtFind"};
  Label lblFound{"lblFound"};
  TextBox txtPreview{"txtPreview"};
  PictureBox picSlider2{"picSlider2"};
  Label lblCurrentFolder{"lblCurrentFolder", "Current Folder:"};
  StatusBar sbStatusBar{"sbStatusBar"};

  Frame frmOptions{"frmOptions"};
  Line linOptions1{"linOptions1"};
  Line linOptions2{"linOptions2"};
  Label lblScreenOptions{"lblScreenOptions", "Screen Options"};
  CheckBox chkMarkSubFolders{"chkMarkSubFolders", "Mar&k Sub Folders"};
  CheckBox chkCollapseFolders{"chkCollapseFolders", "Co&llapse Folders"};
  CheckBox chkShowAllFolders{"chkShowAllFolders", "Show &All Folders"};
  CheckBox chkShowSelectedItems{"chkShowSelectedItems", "Show Selected &Items"};
  CheckBox chkShowUnselectedItems{"chkShowUnselectedItems", "Show U&nselected Items"};
  CheckBox chkSelectByRow{"chkSelectByRow", "Select By Ro&w"};
  Label lblProcessingOptions{"lblProcessingOptions", "Processing Options"};
  CheckBox chkTurbo{"chkTurbo", "Tur&bo"};
  CheckBox chkPermanentDelete{"chkPermanentDelete", "&Permanent Delete"};
  CheckBox chkConfirmFolders{"chkConfirmFolders", "Confirm &Each Folder"};
  CheckBox chkConfirmItems{"chkConfirmItems", "Confirm Each Ite&m"};
  CheckBox chkDeleteFolders{"chkDeleteFolders", "&Delete Folders"};
  CheckBox chkKeepCopy{"chkKeepCopy", "Keep a Copy Fi&rst"};
  Label lblFilterOptions{"lblFilterOptions", "Filter Options"};
  CheckBox chkSelectUnread{"chkSelectUnread", "Select &Unread Items"};
  CheckBox chkSelectFlagged{"chkSelectFlagged", "Select Fla&gged Items"};
  CheckBox chkSelectDate{"chkSelectDate", "Select By Da&te"};
  DatePicker dtpCutoffDate{"dtpCutoffDate"};
  CheckBox chkSelectSubject{"chkSelectSubject", "Select By Sub&ject"};
  TextBox txtSelectSubject{"txtSelectSubject"};
  CheckBox chkMatchCase{"chkMatchCase", "Match Case"};
  CheckBox chkMatchWord{"chkMatchWord", "Match Word"};
  CheckBox chkSelectType{"chkSelectType", "Select By T&ype"};
  std::array<TypeBox, 6> chkType{{{43, CheckBox{"chkType", "Mail"}},
                                  {26, CheckBox{"chkType", "Appointments"}},
                                  {40, CheckBox{"chkType", "Contacts"}},
                                  {42, CheckBox{"chkType", "Journals"}},
                                  {48, CheckBox{"chkType", "Tasks"}},
                                  {44, CheckBox{"chkType", "Notes"}}}};
  CommandButton cmdRun{"cmdRun", "&Clean"};
  CommandButton cmddebug{"cmddebug", "Debug"};

  MenuItem mnuRefresh{"mnuRefresh", "&Refresh"};
  MenuItem mnuRefreshCurrent{"mnuRefreshCurrent", "Refresh &Current"};
  MenuItem mnuStopLoading{"mnuStopLoading", "&Stop Loading"};
  MenuItem mnuMark{"mnuMark", "&Mark Folder"};
  MenuItem mnuUnmarkFolder{"mnuUnmarkFolder", "U&nmark Folder"};
  MenuItem mnuMarkBranch{"mnuMarkBranch", "Mark &Branch"};
  MenuItem mnuProtect{"mnuProtect", "&Protect Folder"};
  MenuItem mnuClean{"mnuClean", "C&lean"};
  MenuItem mnuTakeBack{"mnuTakeBack", "&Take Back Last Run"};
  MenuItem mnuRuns{"mnuRuns", "R&uns..."};
  MenuItem mnuPutBack{"mnuPutBack", "Put &Back"};
  MenuItem mnuDeletedItemsLimit{"mnuDeletedItemsLimit", "&Deleted Items Limit..."};
  MenuItem mnuExport{"mnuExport", "&Export..."};
  MenuItem mnuExportFolder{"mnuExportFolder", "&Export Folder..."};
  MenuItem mnuQuit{"mnuQuit", "&Quit"};
  MenuItem mnuUnmark{"mnuUnmark", "&Unmark All Folders"};
  MenuItem mnuResetOptions{"mnuResetOptions", "&Reset Options"};
  // By the numbers of the grid's logical fields.
  std::array<MenuItem, 9> mnuSortBy{{MenuItem{"mnuSortBy", "&Folder"}, MenuItem{"mnuSortBy", "&Type"},
                                     MenuItem{"mnuSortBy", "S&ender"}, MenuItem{"mnuSortBy", "&Subject"},
                                     MenuItem{"mnuSortBy", "E&ntry"}, MenuItem{"mnuSortBy", "&Date"},
                                     MenuItem{"mnuSortBy", "Si&ze"}, MenuItem{"mnuSortBy", "&Will Go"},
                                     MenuItem{"mnuSortBy", "&Attachments"}}};
  MenuItem mnuSortReverse{"mnuSortReverse", "&Reverse Order"};
  MenuItem mnuResetColumns{"mnuResetColumns", "Reset Column &Widths"};
  // Columns that a person may do without: attachments, size, and what will go.
  MenuItem mnuShowAttachments{"mnuShowAttachments", "&Attachments Column"};
  MenuItem mnuShowSize{"mnuShowSize", "Si&ze Column"};
  MenuItem mnuShowWillGo{"mnuShowWillGo", "&Will Go Column"};
  MenuItem mnuFind{"mnuFind", "&Find in List"};
  MenuItem mnuPreview{"mnuPreview", "&Preview"};
  MenuItem mnuResetWindow{"mnuResetWindow", "Reset &Window"};
  MenuItem mnuOpenItem{"mnuOpenItem", "&Open Item"};
  MenuItem mnuSelectRow{"mnuSelectRow", "Select &Row"};
  MenuItem mnuSelectAllRows{"mnuSelectAllRows", "Select &All Rows"};
  MenuItem mnuCopyRows{"mnuCopyRows", "&Copy as Text"};
  MenuItem mnuNextPane{"mnuNextPane", "&Next Pane"};
  MenuItem mnuPreviousPane{"mnuPreviousPane", "&Previous Pane"};

  MenuItem mnuHelp{"mnuHelp", "&Contents"};
  MenuItem mnuWhatsThis{"mnuWhatsThis", "&What's This?"};
  MenuItem mnuOnlineHelp{"mnuOnlineHelp", "&Online Help"};
  MenuItem mnuAbout{"mnuAbout", "&About Tidyfold"};

  // The window that shows what start-up is doing.
  Form frmMessageBox{"frmMessageBox", "Tidyfold"};
  Label lblMessage{"lblMessage"};

  Form frmAbout{"frmAbout", "About Tidyfold"};

  // The height that all options need, in twips; 0: unknown, and they get all that there is.
  Twips options_height = 0;

  // Puts a text on the clipboard; lines end in CR LF.
  std::function<void(const std::string& text)> Set_Clipboard_Text;

  // Where Keep a Copy First writes to; UTF-8.
  std::string copy_directory;

  // Takes back a run by its number in the log, after a question.
  std::function<void(std::int64_t run)> Take_Back_Run;

  // Every control of the main window that can be enabled, in tab order.
  std::vector<Control*> controls;
};

}  // namespace tidyfold
