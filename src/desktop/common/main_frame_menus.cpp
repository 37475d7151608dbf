// The menus of the window.
#include <wx/menu.h>

#include <algorithm>
#include <utility>

#include "desktop/common/items_pane.h"
#include "desktop/common/main_frame.h"
#include "desktop/common/options_panel.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Entries of the menu of recent stores.
constexpr int most_recent = 9;

}  // namespace

void Main_Frame::Build_Menus() {
  auto* const bar = new wxMenuBar;
  bar->Append(New_File_Menu(), "&File");
  bar->Append(New_Folders_Menu(), "F&olders");
  bar->Append(New_Options_Menu(), "Option&s");
  bar->Append(New_View_Menu(), "&View");
  auto* const help = new wxMenu;
  Add_Entry(*help, model_.mnuHelp, "F1", "Show the help");
  Add_Entry(*help, model_.mnuWhatsThis, "Shift+F1", "Point at something and learn what it is");
  Add_Entry(*help, model_.mnuOnlineHelp, "Ctrl+H", "Show the help as pages in a window of their own");
  help->AppendSeparator();
  Add_Entry(*help, model_.mnuAbout, "", "Show what this program is");
  bar->Append(help, "&Help");
  SetMenuBar(bar);
}

wxMenu* Main_Frame::New_File_Menu() {
  auto* const file = new wxMenu;
  Add_File_Entry(*file, "&Open Store...\tCtrl+O", "Open one or more stores in place of those shown",
                 commands_.Open_Store);
  Add_File_Entry(*file, "Open &Maildir...", "Open a Maildir on this machine in place of the stores shown",
                 commands_.Open_Maildir);
  Add_File_Entry(*file, "Open Mail &Account...", "Open a mailbox on a server in place of the stores shown",
                 commands_.Open_Account);
  if (commands_.Recent_Stores) {
    recent_ = new wxMenu;
    file_entries_.push_back(
        file->AppendSubMenu(recent_, "&Recent Stores", "Open a store that was open before")->GetId());
    Bind(wxEVT_MENU_OPEN, &Main_Frame::Fill_Recent_Stores, this);
    Bind(wxEVT_MENU, &Main_Frame::Open_Recent, this, wxID_FILE1, wxID_FILE1 + most_recent - 1);
  }
  Add_File_Entry(*file, "Close S&tore\tCtrl+W", "Close the store of the current folder",
                 commands_.Close_Store);
  Add_File_Entry(*file, "New &Sample Store...", "Make a store of invented items to try the program on",
                 commands_.New_Sample);
  if (commands_.Import_Files) file->AppendSeparator();
  Add_File_Entry(*file, "&Import Files...\tCtrl+I", "Bring PST, OST, PAB, mbox or EML files into the store",
                 commands_.Import_Files);
  Add_File_Entry(*file, "Import Fo&lder...",
                 "Bring a folder of mail into the store: a Maildir, mbox files, messages",
                 commands_.Import_Folder);
  if (commands_.exports)
    Add_Entry(*file, model_.mnuExport, "Ctrl+E", "Write all folders in forms that other programs read");
  if (commands_.Compact) file->AppendSeparator();
  Add_File_Entry(*file, "&Compact", "Give the room back that the store no longer needs", commands_.Compact);
  if (file->GetMenuItemCount() > 0) file->AppendSeparator();
  Add_Entry(*file, model_.mnuRuns, "Ctrl+L", "Look at what earlier runs have done");
  file->AppendSeparator();
  Add_Entry(*file, model_.mnuQuit, "Ctrl+Q", "Leave Tidyfold");
  return file;
}

wxMenu* Main_Frame::New_Folders_Menu() {
  auto* const folders = new wxMenu;
  Add_Entry(*folders, model_.mnuRefresh, "F5", "Read all folders and their items again");
  Add_Entry(*folders, model_.mnuRefreshCurrent, "Ctrl+F5", "Read the current folder again");
  Add_Entry(*folders, model_.mnuStopLoading, "Esc", "Stop reading items; what has been read can be used");
  folders->AppendSeparator();
  Add_Entry(*folders, model_.mnuMark, "Ctrl+M", "Tick the current folder");
  Add_Entry(*folders, model_.mnuUnmarkFolder, "Ctrl+Shift+M", "Take the tick off the current folder");
  Add_Entry(*folders, model_.mnuMarkBranch, "Ctrl+B", "Tick the current folder and all folders below it");
  Add_Entry(*folders, model_.mnuUnmark, "Ctrl+U", "Take the ticks off all folders");
  folders->AppendSeparator();
  Add_Option(*folders, model_.chkMarkSubFolders);
  Add_Option(*folders, model_.chkCollapseFolders);
  if (commands_.exports) {
    folders->AppendSeparator();
    Add_Entry(*folders, model_.mnuExportFolder, "Ctrl+Shift+E",
              "Write the current folder, with all below it, in forms that other programs read");
  }
  folders->AppendSeparator();
  Add_Entry(*folders, model_.mnuProtect, "Ctrl+K",
            "Keep the current folder, and all below it, from ever being cleaned", wxITEM_CHECK);
  folders->AppendSeparator();
  Add_Entry(*folders, model_.mnuTakeBack, "Ctrl+Shift+Z",
            "Put back what the last run moved to Deleted Items");
  return folders;
}

wxMenu* Main_Frame::New_Options_Menu() {
  auto* const options = new wxMenu;
  Add_Entry(*options, model_.mnuClean, "Ctrl+Return", "Start cleaning what is selected");
  options->AppendSeparator();
  for (CheckBox* const option : {&model_.chkTurbo, &model_.chkPermanentDelete, &model_.chkConfirmFolders,
                                 &model_.chkConfirmItems, &model_.chkDeleteFolders})
    Add_Option(*options, *option);
  if (commands_.exports) Add_Option(*options, model_.chkKeepCopy);
  options->AppendSeparator();
  for (CheckBox* const option :
       {&model_.chkSelectUnread, &model_.chkSelectFlagged, &model_.chkSelectDate, &model_.chkSelectSubject,
        &model_.chkMatchCase, &model_.chkMatchWord, &model_.chkSelectType})
    Add_Option(*options, *option);
  auto* const types = new wxMenu;
  for (TypeBox& type : model_.chkType) Add_Option(*types, type.box);
  options->AppendSubMenu(types, "T&ypes", "Choose the types of items that Select By Type takes");
  options->AppendSeparator();
  Add_Entry(*options, model_.mnuResetOptions, "Ctrl+R", "Put all options back to their safe values");
  options->AppendSeparator();
  Add_Entry(*options, model_.mnuDeletedItemsLimit, "",
            "Choose how many items Deleted Items may hold after a run");
  return options;
}

void Main_Frame::Add_Option(wxMenu& menu, CheckBox& model) {
  const wxString caption = To_Wx(model.Caption());
  const int mark = caption.Find('&');
  const wxString key = mark == wxNOT_FOUND
                           ? wxString()
                           : "\tAlt+" + wxString(caption[static_cast<std::size_t>(mark) + 1]).Upper();
  const int id = menu.AppendCheckItem(wxID_ANY, caption + key, To_Lines(model.Tool_Tip_Text()))->GetId();
  Bind(
      wxEVT_MENU,
      [&model](wxCommandEvent&) {
        if (model.Enabled()) model.Set_Value(model.Checked() ? 0 : 1);
      },
      id);
  Bind(
      wxEVT_UPDATE_UI,
      [&model](wxUpdateUIEvent& event) {
        event.Enable(model.Enabled());
        event.Check(model.Checked());
      },
      id);
}

void Main_Frame::Fill_Recent_Stores(wxMenuEvent& event) {
  event.Skip();
  std::vector<std::string> stores = commands_.Recent_Stores();
  if (stores == recent_stores_) return;
  recent_stores_ = std::move(stores);
  while (recent_->GetMenuItemCount() > 0) recent_->Destroy(recent_->FindItemByPosition(0));
  int number = 0;
  for (const std::string& store : recent_stores_) {
    if (number == most_recent) break;
    wxString text = To_Wx(store);
    text.Replace("&", "&&");
    recent_->Append(wxID_FILE1 + number, wxString::Format("&%d ", number + 1) + text);
    ++number;
  }
}

void Main_Frame::Open_Recent(wxCommandEvent& event) {
  const auto number = static_cast<std::size_t>(event.GetId() - wxID_FILE1);
  // A copy: opening a store changes the list.
  if (number < recent_stores_.size() && model_.mnuRefresh.Enabled())
    commands_.Open_Recent(std::string(recent_stores_[number]));
}

wxMenu* Main_Frame::New_View_Menu() {
  auto* const order = new wxMenu;
  constexpr const char* fields[] = {"their folder",  "their type",   "their sender",
                                    "their subject", "their entry",  "their date",
                                    "their size",    "what will go", "attachments"};
  for (std::size_t field = 0; field < model_.mnuSortBy.size(); ++field)
    Add_Entry(*order, model_.mnuSortBy[field], wxString::Format("Ctrl+%d", static_cast<int>(field) + 1),
              wxString("Put the rows in the order of ") + fields[field], wxITEM_RADIO);
  order->AppendSeparator();
  Add_Entry(*order, model_.mnuSortReverse, "Ctrl+0", "Show the last row first", wxITEM_CHECK);

  auto* const view = new wxMenu;
  Add_Entry(*view, model_.mnuFind, "Ctrl+F", "Narrow what the list shows; what will go stays the same");
  Add_Entry(*view, model_.mnuPreview, "F9", "Show the item of the current row below the list", wxITEM_CHECK);
  view->AppendSeparator();
  for (CheckBox* const option : {&model_.chkShowAllFolders, &model_.chkShowSelectedItems,
                                 &model_.chkShowUnselectedItems, &model_.chkSelectByRow})
    Add_Option(*view, *option);
  view->AppendSeparator();
  view->AppendSubMenu(order, "&Sort By", "Choose the order of the rows");
  auto* const columns = new wxMenu;
  Add_Entry(*columns, model_.mnuShowWillGo, "", "Show which items will go", wxITEM_CHECK);
  Add_Entry(*columns, model_.mnuShowSize, "", "Show how large the items are", wxITEM_CHECK);
  Add_Entry(*columns, model_.mnuShowAttachments, "", "Show which items have attachments", wxITEM_CHECK);
  columns->AppendSeparator();
  Add_Entry(*columns, model_.mnuResetColumns, "", "Give all columns the width that fits the list");
  view->AppendSubMenu(columns, "&Columns", "Choose the columns of the list");
  Add_Entry(*view, model_.mnuResetWindow, "",
            "Put window, panes, columns and order back to what they were at first");
  view->AppendSeparator();
  Add_Entry(*view, model_.mnuOpenItem, "Alt+Return", "Open the item of the current row");
  Add_Entry(*view, model_.mnuSelectRow, "Ctrl+Space", "Select the current row, or take it out");
  Add_Entry(*view, model_.mnuSelectAllRows, "Ctrl+A", "Select every row that may be selected");
  Add_Entry(*view, model_.mnuCopyRows, "Ctrl+C", "Copy the selected rows, or else the current one");
  Add_Entry(*view, model_.mnuPutBack, "", "Put items in Deleted Items back where a run found them");
  view->AppendSeparator();
  Add_Entry(*view, model_.mnuNextPane, "F6", "Go to the next part of the window");
  Add_Entry(*view, model_.mnuPreviousPane, "Shift+F6", "Go to the part of the window before");
  model_.mnuFind.Click = [this] { items_->Go_To_Search(); };
  model_.mnuNextPane.Click = [this] { Go_To_Pane(1); };
  model_.mnuPreviousPane.Click = [this] { Go_To_Pane(-1); };
  return view;
}

void Main_Frame::Add_Entry(wxMenu& menu, MenuItem& model, const wxString& key, const wxString& help,
                           wxItemKind kind) {
  menu_binders_.push_back(std::make_unique<Menu_Binder>(
      model, menu, *this, key, help, [this, &model] { return Settle() || &model != &model_.mnuClean; },
      kind));
}

Context_Menu Main_Frame::Entries(std::initializer_list<const MenuItem*> models) const {
  Context_Menu entries;
  for (const MenuItem* const model : models) {
    const auto found = std::find_if(menu_binders_.begin(), menu_binders_.end(),
                                    [&](const auto& binder) { return &binder->Model() == model; });
    if (model == nullptr) {
      entries.push_back(nullptr);
    } else if (found != menu_binders_.end()) {
      entries.push_back(found->get());
    }
  }
  return entries;
}

void Main_Frame::Add_File_Entry(wxMenu& menu, const wxString& label, const wxString& help,
                                std::function<void()>& command) {
  if (!command) return;
  const int id = menu.Append(wxID_ANY, label, help)->GetId();
  file_entries_.push_back(id);
  Bind(
      wxEVT_MENU, [&command](wxCommandEvent&) { command(); }, id);
}

}  // namespace tidyfold
