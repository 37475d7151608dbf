#include "app/app.h"

#include "app/panes.h"
#include "clean/cleaning_run.h"
#include "grid/item_display.h"
#include "grid/row_selection.h"
#include "help/help.h"
#include "marking/processing_options.h"

namespace tidyfold {

namespace {

// Procedures that are still unwinding when the window has been closed ask nobody any more: every question
// gets the answer that changes nothing.
class Window_Message_Box : public Message_Box {
 public:
  Window_Message_Box(const Form& form, Message_Box& message_box) : form_(form), message_box_(message_box) {}
  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override {
    if (form_.Loaded()) return message_box_.Show(text, buttons, icon, title);
    if (buttons == Buttons::OK_Only) return Answer::OK;
    return buttons == Buttons::Yes_No ? Answer::No : Answer::Cancel;
  }

 private:
  const Form& form_;
  Message_Box& message_box_;
};

}  // namespace

struct App::Parts {
  Parts(MainWindow& w, Automation& automation, Message_Box& m, Events& e, Clock& c,
        Help_Environment* help_environment);

  void Wire();
  void Form_Load();
  void End_Without_Store();
  void Form_Unload();
  void mnuQuit_Click();
  void Load_Interface();
  bool Build_Interface();

  MainWindow& window;
  Window_Message_Box window_message_box;
  Message_Box& message_box{window_message_box};
  Events& events;
  Clock& clock;

  Error_Handler errors{message_box};
  FolderData_Array records;
  Run_State run_state;
  Outlook_Session session;
  Folder_Tree folder_tree{window, records, session, message_box, events, errors};
  Deleted_Items_Folders deleted_items{window, records, folder_tree, errors};
  Item_Cache cache{window, records, folder_tree, session, message_box, events, errors};
  Item_Filters filters{window, records, errors};
  Grid_Columns columns{window, records, errors};
  Selection_Total total{window, records, folder_tree, filters, errors};
  Grid_Rows rows{window, records, folder_tree, filters, columns, total, message_box, errors};
  Row_Selection selection{window, records, deleted_items, rows, message_box, errors};
  Item_Display display{window, records, session, message_box, errors};
  Control_Enabling enabling{window, rows, run_state, errors};
  Folder_Marking marking{window, records,  folder_tree, deleted_items, columns,
                         rows,   enabling, message_box, errors};
  Processing_Options options{window,  records,  folder_tree, deleted_items, rows,
                             marking, enabling, message_box, errors};
  Refresh refresh{window, records, folder_tree, cache, rows, message_box, errors};
  Status_Line status{window, errors};
  Safety_Checks checks{window,  records,   folder_tree, deleted_items, filters, rows,
                       marking, run_state, message_box, clock,         errors};
  Deletion_Strategies strategies{window, records, folder_tree, session, filters, rows,
                                 checks, status,  run_state,   events,  errors};
  Cleaning_Run cleaning{window,  records, folder_tree, deleted_items, cache,       rows,   marking, enabling,
                        refresh, checks,  strategies,  run_state,     message_box, events, errors};
  Panes panes{window, columns, errors};
  std::unique_ptr<Help> help;  // none in front ends without help
  bool interface_loading = false;
};

App::Parts::Parts(MainWindow& w, Automation& automation, Message_Box& m, Events& e, Clock& c,
                  Help_Environment* help_environment)
    : window(w),
      window_message_box(w.frmRemoveItems, m),
      events(e),
      clock(c),
      session(automation, w, message_box, errors) {
  if (help_environment != nullptr)
    help = std::make_unique<Help>(window, *help_environment, message_box, errors);
  Wire();
}

// Everything that must be told upward, and every event, is joined to its procedure here.
void App::Parts::Wire() {
  errors.End_Without_Store = [this] { End_Without_Store(); };
  folder_tree.Set_Folder_Label = [this](int index) { marking.Set_Folder_Label(index); };
  cache.In_View = [this](int folder) { return rows.In_View(folder); };
  cache.Add_Folder_Rows = [this](int folder) { rows.Add_Folder_Rows(folder, Marker::None); };
  cache.Remove_Folder_Rows = [this](int folder) { rows.Remove_Folder_Rows(folder); };
  cache.Display_Selected_Items_Total = [this] { rows.Display_Selected_Items_Total(); };
  cache.Set_Grid_Order = [this] { rows.Set_Grid_Order(); };
  filters.Change_Filtered_Rows = [this] { rows.Change_Filtered_Rows(); };
  filters.Enable_Command_Buttons = [this] { enabling.Enable_Command_Buttons(); };
  rows.Check_Select_By_Row = [this] { return selection.Check_Select_By_Row(); };
  selection.Check_Selected_Folders = [this] { return marking.Check_Selected_Folders(); };
  selection.Enable_Check_Boxes = [this] { enabling.Enable_Check_Boxes(); };
  selection.Enable_Command_Buttons = [this] { enabling.Enable_Command_Buttons(); };
  enabling.Loading = [this] { return cache.Running(); };
  enabling.Count_Selected_Nodes = [this] { return marking.Count_Selected_Nodes(); };
  refresh.Load_Interface = [this] { Load_Interface(); };
  refresh.Interface_Loading = [this] { return interface_loading; };
  refresh.Run_Under_Way = [this] { return cleaning.Under_Way(); };
  refresh.Enable_Command_Buttons = [this] { enabling.Enable_Command_Buttons(); };

  filters.Wire();
  rows.Wire();
  selection.Wire();
  display.Wire();
  marking.Wire();
  options.Wire();
  refresh.Wire();
  cleaning.Wire();
  panes.Wire();
  if (help) help->Wire();
  window.mnuQuit.Click = [this] { mnuQuit_Click(); };
  window.frmRemoveItems.Close = [this] { Form_Unload(); };
}

void App::Parts::Form_Load() {
  errors.Trap_Errors = true;
  errors.Run("Form_Load", [&](Procedure& procedure) {
    window.frmRemoveItems.Load();
    FlexGrid& grid = window.grdItems;
    grid.Fill_Style = 1;
    // The grid's own highlight is invisible; only the rows' own colours show what is selected.
    grid.Back_Colour_Selected = grid.Back_Colour;
    grid.Fore_Colour_Selected = grid.Fore_Colour;
    procedure.Step("Form_Load - Set HTML URLs");
    if (help) help->Set_HTML_URLs();
    window.frmMessageBox.Show();
    if (!session.Start_Outlook()) {
      window.frmRemoveItems.Unload();
      window.frmAbout.Unload();
      window.frmMessageBox.Unload();
      return;
    }
    procedure.Step("Form_Load - Set Variables");
    window.dtpCutoffDate.Set_Value(clock.Today());
    run_state.Processing = false;
    session.debug = false;
    window.cmddebug.Set_Visible(false);
    enabling.Load_Tooltips();
    enabling.Set_Checkbox_Values();
    procedure.Step("Form_Load - Initialize Help");
    if (help) help->Initialize_Help();
    procedure.Step("Form_Load - Set Initialize Slide Bars");
    panes.Set_Up_Bars();
    procedure.Step("Form_Load - Align Lines");
    panes.Align_Lines();
    procedure.Step("Form_Load - Align Options Box");
    panes.Align_Options_Box();
    procedure.Step("Form_Load - Align Folder Box");
    panes.Align_Folder_Box();
    procedure.Step("Form_Load - Align Command Button");
    panes.Align_Command_Button();
    procedure.Step("Form_Load - Align Subject Box");
    panes.Align_Subject_Box();
    procedure.Step("Form_Load - Align Current Folder Label");
    panes.Align_Current_Folder_Label();
    panes.Form_Resize();
    procedure.Step("Form_Load - Load Interface");
    Load_Interface();
  });
}

void App::Parts::Load_Interface() {
  errors.Run("Load_Interface", [&] {
    interface_loading = true;
    do {
      refresh.ReloadRequested = false;
      if (!Build_Interface()) {
        interface_loading = false;
        return;
      }
      // A refresh that came before the first item was read starts over as well.
      if (!refresh.ReloadRequested) cache.Cache_Folder_Items();
      rows.Display_Empty_Text();
    } while (refresh.ReloadRequested && window.frmRemoveItems.Loaded());
    interface_loading = false;
    if (!cache.AllFoldersCached || !window.frmRemoveItems.Loaded()) return;
    panes.Apply_Bars_If_Needed();
    message_box.Show("All Folders Loaded");
  });
}

// The tree and everything that can be used before the items are there. False when the window was closed.
bool App::Parts::Build_Interface() {
  enabling.Enable_All_Controls(false);
  rows.CurrentNodeIndex = 0;
  selection.Set_Anchor(0);
  window.grdItems.Set_Rows(1);
  folder_tree.Build_Folder_Tree();
  if (!window.frmRemoveItems.Loaded()) return false;
  if (window.trvFolders.Count() < 2) {
    if (!errors.Store_Gone()) message_box.Show("No folders were loaded.", Buttons::OK_Only, Icon::Critical);
    Form_Unload();
    return false;
  }
  folder_tree.Set_Start_Folder();
  rows.CurrentNodeIndex = window.trvFolders.Selected_Item();
  if (rows.CurrentNodeIndex == 0) marking.Set_Folder_Label(0);
  deleted_items.Assigne_Deleted_Items_Folders();
  columns.CurrentGridItemType = item_type::mail;
  columns.Set_Grid_Columns();
  enabling.Enable_All_Controls(true);
  window.trvFolders.Set_Visible(true);
  window.frmMessageBox.Hide();
  window.frmRemoveItems.Show();
  events.Do_Events();
  return window.frmRemoveItems.Loaded();
}

void App::Parts::mnuQuit_Click() {
  errors.Run("mnuQuit_Click", [&] {
    if (message_box.Show("Quit Tidyfold?", Buttons::Yes_No, Icon::None, "Tidyfold") == Answer::Yes)
      Form_Unload();
  });
}

// Loops that are under way further out see the flags and unwind.
void App::Parts::End_Without_Store() {
  cache.StopCaching = cache.InterruptCaching = true;
  if (std::exchange(run_state.Processing, false)) run_state.NotAllDeleted = true;
}

// They do so at their next yield here as well.
void App::Parts::Form_Unload() {
  errors.Run("Form_Unload", [&] {
    cache.StopCaching = cache.InterruptCaching = true;
    run_state.Processing = false;
    if (help) help->Unload();
    window.frmMessageBox.Unload();
    window.frmAbout.Unload();
    window.frmRemoveItems.Unload();
  });
}

App::App(MainWindow& window, Automation& automation, Message_Box& message_box, Events& events, Clock& clock,
         Help_Environment* help_environment)
    : parts_(std::make_unique<Parts>(window, automation, message_box, events, clock, help_environment)) {}

App::~App() = default;

void App::Form_Load() {
  parts_->Form_Load();
}

void App::Load_Interface() {
  parts_->Load_Interface();
}

const FolderData_Array& App::Folder_Data() const {
  return parts_->records;
}

const Run_State& App::Run() const {
  return parts_->run_state;
}

bool App::Check_Screen() {
  return parts_->checks.Check_Screen();
}

std::vector<std::int32_t> App::Items_To_Take(int folder) const {
  const MainWindow& window = parts_->window;
  if (!window.trvFolders.Exists(folder) || !window.trvFolders.Checked(folder)) return {};
  // Turbo and the deletion of folders ask nothing of the items.
  const bool all = window.chkTurbo.Checked() || Takes_Folder(folder);
  if (!all && window.chkDeleteFolders.Checked()) return {};
  std::vector<std::int32_t> items;
  const FolderData& record = parts_->records[folder];
  for (std::int32_t item = 1; item <= record.CachedCount; ++item) {
    if (all ? record.Cached(item).ItemClass != ItemData::deleted
            : parts_->filters.Check_Filtered_Record(folder, folder, item))
      items.push_back(item);
  }
  return items;
}

// A folder goes when all below it goes.
bool App::Takes_Folder(int folder) const {
  const MainWindow& window = parts_->window;
  return window.chkDeleteFolders.Checked() && !window.chkTurbo.Checked() &&
         window.trvFolders.Exists(folder) && window.trvFolders.Checked(folder) &&
         parts_->records[folder].Folder != nullptr && !parts_->marking.Check_For_Unmarked_Child(folder);
}

}  // namespace tidyfold
