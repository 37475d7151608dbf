#include "app/app.h"

#include "app/tooltips.h"
#include "base/text.h"
#include "cache/item_dates.h"
#include "runs/run_listing.h"

namespace tidyfold {

namespace {

constexpr std::size_t most_of_title = 120;  // characters

}  // namespace

Answer Window_Message_Box::Show(const std::string& text, Buttons buttons, Icon icon,
                                const std::string& title) {
  return form_.Loaded() ? message_box_.Show(text, buttons, icon, title) : Safest_Answer(buttons);
}

void Window_Message_Box::Inform(const std::string& text) {
  if (form_.Loaded()) message_box_.Inform(text);
}

Answer Window_Message_Box::Show_Review(const Review& review) {
  return form_.Loaded() ? message_box_.Show_Review(review) : Safest_Answer(Buttons::OK_Cancel);
}

std::optional<std::int32_t> Window_Message_Box::Ask_Number(const std::string& question, std::int32_t now,
                                                           std::int32_t least, std::int32_t most) {
  if (!form_.Loaded()) return std::nullopt;
  return message_box_.Ask_Number(question, now, least, most);
}

std::optional<std::string> Window_Message_Box::Ask_Directory(const std::string& question,
                                                             const std::string& now) {
  if (!form_.Loaded()) return std::nullopt;
  return message_box_.Ask_Directory(question, now);
}

App::App(MainWindow& w, const Surroundings& s)
    : window(w),
      automation(s.automation),
      log(s.log),
      events(s.events),
      clock(s.clock),
      window_message_box(w.frmRemoveItems, s.message_box),
      session(s.automation, w, message_box, errors),
      protection(w, records, session, s.protection),
      checks(w, records, deleted_items, s.limits, run, message_box, s.clock, errors),
      journal(s.automation, s.log, records, run, s.clock, message_box),
      copy_first(w, records, s.copies, status, run, phase, message_box, events, errors),
      taking_back(session, s.automation.Groups(), s.log, Get_Item_Date, s.clock, message_box, progress,
                  errors),
      taking_back_commands(w, records, deleted_items, rows, refresh, cache, taking_back, s.limits, phase,
                           message_box, errors),
      remembered(w, columns, rows, panes, s.registry, errors) {
  if (s.help_environment != nullptr)
    help = std::make_unique<Help>(window, *s.help_environment, message_box, errors);
  Wire();
}

App::~App() {
  automation.Ask_When_Busy({});
}

// Every event is joined to its procedure here.
void App::Wire() {
  errors.End_Without_Store = [this] { End_Without_Store(); };
  automation.Ask_When_Busy([this](const std::string& words) { return Go_On_Though_Busy(words); });
  phase.changed = [this] {
    enabling.Follow_Phase();
    if (phase.Is_Run() && !phase.Processing()) taking_back.Cancel();
  };
  filters.Wire();
  rows.Wire();
  selection.Wire();
  display.Wire();
  preview.Wire();
  search.Wire();
  marking.Wire();
  options.Wire();
  refresh.Wire();
  copy_first.Wire();
  cleaning.Wire();
  taking_back_commands.Wire();
  panes.Wire();
  remembered.Wire();
  if (help) help->Wire();
  window.mnuQuit.Click = [this] { mnuQuit_Click(); };
  // In the middle of a run, closing the window asks as Quit does.
  window.frmRemoveItems.Close = [this] { phase.Is_Run() ? mnuQuit_Click() : Form_Unload(); };
}

void App::Form_Load() {
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
    session.debug = false;
    window.cmddebug.Set_Visible(false);
    Load_Tooltips(window, errors);
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
    procedure.Step("Form_Load - Restore");
    remembered.Restore();
    procedure.Step("Form_Load - Load Interface");
    Load_Interface();
  });
}

// A log that cannot be read is told when it is needed.
void App::Tell_Killed_Runs() {
  try {
    for (const Logged_Run& killed : log.Killed_Since_Last_Told()) {
      message_box.Show(Killed_Text(killed) +
                       "\r\n\r\nRuns in the File menu lists them and takes back what was moved.");
      log.Told(killed.run);
    }
  } catch (const Run_Log_Error&) {
    return;
  }
}

void App::Load_Interface() {
  errors.Run("Load_Interface", [&] {
    {
      const Program_Phase::Scope loading(phase, Phase::Loading);
      do {
        refresh.ReloadRequested = false;
        if (!Build_Interface()) return;
        // A refresh that came before the first item was read starts over as well.
        if (!refresh.ReloadRequested) cache.Cache_Folder_Items();
        rows.Follow_Choice();
      } while (refresh.ReloadRequested && window.frmRemoveItems.Loaded());
    }
    if (!cache.AllFoldersCached || !window.frmRemoveItems.Loaded()) return;
    panes.Apply_Bars_If_Needed();
    message_box.Inform("All Folders Loaded");
  });
}

// The tree and everything that can be used before the items are there. False when the window was closed.
bool App::Build_Interface() {
  const Program_Phase::Scope building(phase, Phase::Building);
  rows.CurrentNodeIndex = 0;
  selection.Set_Anchor(0);
  window.grdItems.Set_Rows(1);
  folder_tree.Build_Folder_Tree();
  if (!window.frmRemoveItems.Loaded()) return false;
  if (window.trvFolders.Count() < 2) {
    // A refresh that finds Outlook busy or closed leaves the window, for another one.
    if (errors.Store_Gone() && window.frmRemoveItems.Visible()) {
      window.trvFolders.Set_Visible(true);
      window.frmMessageBox.Hide();
      folder_tree.Set_Folder_Label(0);
      return false;
    }
    if (!errors.Store_Gone()) message_box.Show("No folders were loaded.", Buttons::OK_Only, Icon::Critical);
    Form_Unload();
    return false;
  }
  Name_Window();
  folder_tree.Set_Start_Folder();
  rows.CurrentNodeIndex = window.trvFolders.Selected_Item();
  if (rows.CurrentNodeIndex == 0) folder_tree.Set_Folder_Label(0);
  deleted_items.Assigne_Deleted_Items_Folders();
  columns.CurrentGridItemType = item_type::mail;
  columns.Set_Grid_Columns();
  phase.Tree_Is_There();
  window.trvFolders.Set_Visible(true);
  window.frmMessageBox.Hide();
  window.frmRemoveItems.Show();
  events.Do_Events();
  return window.frmRemoveItems.Loaded();
}

// After the stores that are open.
void App::Name_Window() {
  std::string title;
  for (const std::string& name : folder_tree.Store_Names()) title += (title.empty() ? "" : ", ") + name;
  if (title.size() > most_of_title) title = std::string(First_Characters(title, most_of_title)) + "...";
  window.frmRemoveItems.Set_Caption(title.empty() ? application_title : title + " - " + application_title);
}

void App::mnuQuit_Click() {
  errors.Run("mnuQuit_Click", [&] {
    if (message_box.Show("Quit Tidyfold?", Buttons::Yes_No, Icon::None, "Tidyfold") == Answer::Yes)
      Form_Unload();
  });
}

bool App::Go_On_Though_Busy(const std::string& words) {
  const std::string text =
      words.empty() ? "Outlook is busy, or waits for an answer in one of its windows.\r\n\r\nLook there, and "
                      "then try again. Stop ends what is under way here; nothing is closed."
                    : words + "\r\n\r\nStop ends what is under way; what has been done by then stays done.";
  return message_box.Show(text, Buttons::Retry_Stop) == Answer::Retry;
}

// Loops that are under way further out see it and unwind.
void App::End_Without_Store() {
  cache.StopCaching = cache.InterruptCaching = true;
  if (phase.Processing()) run.NotAllDeleted = true;
  phase.Lose_Store();
}

void App::End_With_System() {
  Form_Unload();
}

// They do so at their next yield here as well.
void App::Form_Unload() {
  errors.Run("Form_Unload", [&] {
    cache.StopCaching = cache.InterruptCaching = true;
    remembered.Keep();
    phase.Stop_Loading();
    phase.Cancel_Run();
    if (help) help->Unload();
    window.frmMessageBox.Unload();
    window.frmAbout.Unload();
    window.frmRemoveItems.Unload();
  });
}

}  // namespace tidyfold
