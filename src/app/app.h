// The main window's life (start-up, loading, quitting), and the one place where everything that works on the
// window is built and joined.
#pragma once

#include <memory>

#include "app/remembered.h"
#include "base/clock.h"
#include "clean/cleaning_run.h"
#include "clean/taking_back_commands.h"
#include "grid/item_display.h"
#include "grid/item_search.h"
#include "grid/row_selection.h"
#include "help/help.h"

namespace tidyfold {

// What the program needs from outside.
struct Surroundings {
  Automation& automation;
  Message_Box& message_box;
  Events& events;
  Clock& clock;
  Run_Log& log;
  Deleted_Items_Limits& limits;
  Folder_Protection& protection;
  // Front ends without help give none.
  Help_Environment* help_environment = nullptr;
  // Stores without copies have none.
  Item_Copies* copies = nullptr;
  // Front ends that remember nothing have none.
  Registry* registry = nullptr;
};

// Procedures that are still unwinding when the window has been closed ask nobody any more: every question
// gets its safest answer.
class Window_Message_Box : public Message_Box {
 public:
  Window_Message_Box(const Form& form, Message_Box& message_box) : form_(form), message_box_(message_box) {}
  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override;
  void Inform(const std::string& text) override;
  Answer Show_Review(const Review& review) override;
  std::optional<std::string> Ask_Directory(const std::string& question, const std::string& now) override;
  std::optional<std::int32_t> Ask_Number(const std::string& question, std::int32_t now, std::int32_t least,
                                         std::int32_t most) override;

 private:
  const Form& form_;
  Message_Box& message_box_;
};

// Everything that the program does to one main window. All calls come from one thread; every handler may run
// inside a yield of a longer one. The object must outlive the last of them: a front end destroys it only
// after its event loop has unwound.
//
// Members are built from top to bottom; each uses only what stands above it. What has to be told upward goes
// through the interfaces that App itself implements.
struct App : private Interface_Loader {
  App(MainWindow& w, const Surroundings& surroundings);
  App(const App&) = delete;
  App& operator=(const App&) = delete;
  ~App() override;

  // Start-up: reaches Outlook, lays the window out, builds the tree and loads the items. Returns when
  // everything is loaded or the window was closed meanwhile (window.frmRemoveItems.Loaded() then is false).
  void Form_Load();
  // Rebuilds the tree and loads the items, again and again while a refresh is asked for on the way.
  void Load_Interface() override;
  // Once for each run that ended with its process. For a front end whose person sees message boxes while the
  // window opens.
  void Tell_Killed_Runs();
  // The session ends. Unloads the window as closing it does, but asks nothing; the program may be gone as
  // soon as this returns.
  void End_With_System();

  MainWindow& window;
  Automation& automation;
  Run_Log& log;
  Events& events;
  Clock& clock;
  Window_Message_Box window_message_box;
  Message_Box& message_box{window_message_box};
  Error_Handler errors{message_box};
  Program_Phase phase;
  FolderData_Array records;
  Filter_In_Force filter;
  Run_State run;
  Outlook_Session session;
  Protected_Folders protection;
  Folder_Tree folder_tree{window, records, protection, session, message_box, events, errors};
  Deleted_Items_Folders deleted_items{window, records, session, folder_tree, errors};
  Planner planner{window, records, filter, errors};
  Control_Enabling enabling{window, protection, phase, errors};
  Grid_Columns columns{window, records, errors};
  Choice_Status choice{window, records, planner, errors};
  Grid_Rows rows{window, records, planner, columns, choice, enabling, message_box, errors};
  Item_Filters filters{window, filter, rows, errors};
  Item_Cache cache{window, records, folder_tree, session, rows, phase, message_box, events, errors};
  Row_Selection selection{window, protection, deleted_items, rows, enabling, message_box, errors};
  Item_Display display{window, records, session, message_box, errors};
  Item_Preview preview{window, records, display, errors};
  Item_Search search{window, records, errors};
  Refresh refresh{window, records, folder_tree, cache, rows, *this, phase, message_box, errors};
  Folder_Marking marking{window, records, protection, folder_tree, deleted_items, rows, message_box, errors};
  Processing_Options options{window,  records,  folder_tree, deleted_items, rows,
                             marking, enabling, message_box, errors};
  Safety_Checks checks;
  Run_Journal journal;
  Item_Removal removal{records, protection, session, checks, journal, run, phase, errors};
  Status_Line status{window, errors};
  Deletion_Strategies strategies{window, records, folder_tree, rows,   removal, journal,
                                 status, run,     phase,       events, errors};
  Copy_First copy_first;
  Cleaning_Run cleaning{window, records, folder_tree, deleted_items, planner,    filters,    cache,
                        rows,   options, refresh,     checks,        copy_first, strategies, journal,
                        run,    phase,   message_box, events,        errors};
  Taking_Back_Progress progress{events, window.sbStatusBar, taking_back};
  Taking_Back taking_back;
  Taking_Back_Commands taking_back_commands;
  Panes panes{window, columns, errors};
  Remembered remembered;
  std::unique_ptr<Help> help;

 private:
  void Wire();
  void End_Without_Store();
  bool Go_On_Though_Busy(const std::string& words);
  void Form_Unload();
  void mnuQuit_Click();
  void Name_Window();
  bool Build_Interface();
};

}  // namespace tidyfold
