#include "desktop/common/program.h"

#include <wx/evtloop.h>
#include <wx/uilocale.h>
#include <wx/utils.h>

#include <iostream>

#include "app/app.h"
#include "base/size_text.h"
#include "desktop/common/desktop_help.h"
#include "desktop/common/error_box.h"
#include "desktop/common/item_window.h"
#include "desktop/common/main_frame.h"
#include "desktop/common/message_window.h"
#include "desktop/common/outlook_source.h"
#include "desktop/common/runs_window.h"
#include "desktop/common/show_in_front.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/welcome_dialog.h"
#include "export/export.h"
#include "import/import.h"
#include "settings/last_stores.h"

namespace tidyfold {

Program::Program(std::vector<Store_Address> stores, std::vector<std::filesystem::path> files,
                 Program_Observer* observer)
    : first_stores_(std::move(stores)), first_files_(std::move(files)), observer_(observer) {}

Program::~Program() = default;

namespace {

// A failed assertion of wxWidgets concerns the developers; it must not interrupt whoever works with the
// program.
void Note_Failed_Check(const wxString& file, int line, const wxString& function, const wxString& condition,
                       const wxString& message) {
  std::cerr << From_Wx(file) << ':' << line << ": " << From_Wx(function) << ": \"" << From_Wx(condition)
            << "\" failed. " << From_Wx(message) << std::endl;
}

}  // namespace

bool Program::OnInit() {
  wxSetAssertHandler(Note_Failed_Check);
  SetAppName("tidyfold");
  SetAppDisplayName(application_title);
  wxUILocale::UseDefault();
  // The window may close before the last handler has returned; End_When_Unwound ends the event loop.
  SetExitOnFrameDelete(false);
  // Nothing holds up the end of the session.
  Bind(wxEVT_QUERY_END_SESSION, [](wxCloseEvent&) {});
  Bind(wxEVT_END_SESSION, [this](wxCloseEvent&) { Session_Ends(); });
  ending_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) {
    // True when the main loop itself dispatches this timer, not a yield, a box or a dialog inside it.
    const bool unwound = !loading_ && message_box_.Open_Boxes() == 0 && !GetMainLoop()->IsYielding() &&
                         wxEventLoopBase::GetActive() == GetMainLoop();
    unwound ? ExitMainLoop() : End_When_Unwound();
  });
  CallAfter([this] { Start(); });
  return true;
}

void Program::Start() {
  registry_ = Make_System_Registry([this](const std::string& text) {
    message_box_.Show(text, Buttons::OK_Only, Icon::None, application_title);
  });
  files_ = std::make_unique<Store_Files>(stores_, *registry_);
  stored_protection_ = std::make_unique<Stored_Protection>(*registry_);
  stores_.Keep_Marks_In(stored_protection_.get());
  if (!Open_First_Stores()) return ExitMainLoop();
  Build();
  loading_ = true;
  app_->Form_Load();
  if (window_.frmRemoveItems.Loaded()) app_->Tell_Killed_Runs();
  loading_ = false;
  if (!window_.frmRemoveItems.Loaded()) End_When_Unwound();
}

bool Program::Open_First_Stores() {
  if (!first_files_.empty()) {
    // What is imported goes into the stores that were open last, or into a new one.
    if (first_stores_.empty()) first_stores_ = Last_Stores(*registry_);
    if (!first_stores_.empty()) files_->Open(nullptr, first_stores_);
    if (files_->Take_In(nullptr, first_files_) || !stores_.Open_Stores().empty()) return true;
    return Welcome_Dialog(*files_).ShowModal() == wxID_OK;
  }
  if (first_stores_.empty()) {
    system_outlook_ = Make_Outlook_Source();
    if (system_outlook_) return true;
    first_stores_ = Last_Stores(*registry_);
  }
  if (!first_stores_.empty() && files_->Open(nullptr, first_stores_)) return true;
  return Welcome_Dialog(*files_).ShowModal() == wxID_OK;
}

void Program::Build() {
  schedule_ = std::make_unique<Repaint_Schedule>();
  File_Commands commands;
  if (!system_outlook_) {
    commands.Open_Store = [this] { Change_Stores([this] { return files_->Ask_And_Open(frame_); }); };
    commands.New_Sample = [this] { Change_Stores([this] { return files_->Make_Sample_Store(frame_); }); };
  }
  if (!system_outlook_ && Can_Import()) {
    commands.Import_Files = [this] { Change_Stores([this] { return files_->Import_Files(frame_); }); };
    commands.Import_Folder = [this] { Change_Stores([this] { return files_->Import_Folder(frame_); }); };
  }
  if (!system_outlook_) {
    commands.Take_In = [this](const std::vector<std::filesystem::path>& files) {
      Change_Stores([&] { return files_->Take_In(frame_, files); });
    };
  }
  commands.exports = !system_outlook_ && Can_Export();
  if (!system_outlook_) commands.Compact = [this] { Compact(); };
  frame_ = new Main_Frame(window_, *schedule_, std::move(commands), [this] {
    help_->Close_Book();
    End_When_Unwound();
  });
  SetTopWindow(frame_);
  message_window_ = new Message_Window(window_);
  if (observer_ != nullptr) observer_->Window_Built(*frame_, window_);

  window_.mnuExport.Click = [this] { Export(nullptr); };
  window_.mnuExportFolder.Click = [this] {
    const int folder = window_.trvFolders.Selected_Item();
    if (app_->records.Has(folder)) Export(app_->records[folder].Folder);
  };
  stores_.Set_Display([this](const Displayed_Item& item) { Show_In_Front(*new Item_Window(frame_, item)); });
  window_.mnuRuns.Click = [this] { Show_Runs(); };
  events_.before_yield = [this] { stores_.Commit_Pending(); };
  message_box_.opening = [this](const std::string& text) {
    schedule_->Flush();
    if (observer_ != nullptr) observer_->Box_Opened(text);
  };
  message_box_.closed = [this] {
    if (observer_ != nullptr) observer_->Box_Closed();
  };
  Bind(wxEVT_IDLE, [this](wxIdleEvent& event) {
    event.Skip();
    Commit();
  });
  help_ = std::make_unique<Desktop_Help>(*frame_, window_, message_box_, *registry_);
  Automation& outlook = system_outlook_ ? *system_outlook_ : stores_;
  limits_ = std::make_unique<Stored_Limits>(*registry_);
  Folder_Protection& protection =
      system_outlook_ ? static_cast<Folder_Protection&>(*stored_protection_) : stores_;
  app_ = std::make_unique<App>(
      window_, Surroundings{outlook, message_box_, events_, clock_, log_, *limits_, protection,
                            &help_->Environment(), system_outlook_ || !Can_Export() ? nullptr : &copies_});
  Remember_Copy_Directory();
  if (!system_outlook_)
    for (auto* const command : {&window_.cmdRun.Click, &window_.mnuClean.Click})
      Offer_To_Compact_After(*command);
  window_.Take_Back_Run = [this](std::int64_t run) { app_->taking_back_commands.Take_Back_Run(run); };
}

void Program::Export(const MAPIFolder_Ptr& folder) {
  if (app_->phase.Is_Run()) {
    message_box_.Show("A run is under way. Export when it has ended.", Buttons::OK_Only, Icon::None,
                      application_title);
    return;
  }
  files_->Export(frame_, folder);
}

// The directory that was chosen is offered the next time, too.
void Program::Remember_Copy_Directory() {
  window_.copy_directory = Last_Copy_Directory(*registry_);
  window_.chkKeepCopy.Click = [this, choose = std::move(window_.chkKeepCopy.Click)] {
    choose();
    if (window_.chkKeepCopy.Checked()) Keep_Copy_Directory(*registry_, window_.copy_directory);
  };
}

void Program::Show_Runs() {
  if (runs_window_ == nullptr) runs_window_ = new Runs_Window(frame_, window_, Default_Run_Log_File());
  // Raised at once: one that is raised later may lose its place on the screen.
  runs_window_->Show();
  runs_window_->Restore();
  runs_window_->Raise();
}

void Program::Compact() {
  if (app_->phase.Is_Run()) {
    message_box_.Show("A run is under way. Compact the store when it has ended.", Buttons::OK_Only,
                      Icon::None, application_title);
    return;
  }
  files_->Compact(frame_);
}

// After a run that left much unused room. The command also cancels a run, and then comes back at once.
void Program::Offer_To_Compact_After(std::function<void()>& command) {
  constexpr std::int64_t worth_while = std::int64_t{50} << 20;
  constexpr std::int64_t part_of_file = 4;
  command = [this, run = std::move(command)] {
    const bool nested = app_->phase.Is_Run();
    const std::int64_t before = files_->Unused_Bytes();
    run();
    if (nested || app_->phase.Is_Run() || !window_.frmRemoveItems.Loaded()) return;
    const std::int64_t unused = files_->Unused_Bytes();
    if (unused - before < worth_while || unused < files_->File_Bytes() / part_of_file) return;
    if (message_box_.Show(
            Format_Size(unused) + " of the store are not used any more. Give this room back now?",
            Buttons::Yes_No, Icon::None, application_title) == Answer::Yes)
      Compact();
  };
}

void Program::Change_Stores(const std::function<bool()>& change) {
  if (change()) Raise(window_.mnuRefresh.Click);
}

// Makes what a handler changed in the store last, once the handler has returned.
void Program::Commit() {
  if (GetMainLoop() == nullptr || GetMainLoop()->IsYielding()) return;
  try {
    stores_.Commit_Pending();
  } catch (const std::exception& error) {
    message_box_.Show(error.what(), Buttons::OK_Only, Icon::Critical, application_title);
  }
}

// The system may end the program as soon as this returns, and nobody can be told anything.
void Program::Session_Ends() {
  if (app_) app_->End_With_System();
  try {
    stores_.Commit_Pending();
  } catch (const std::exception&) {
    // What is not kept is still in the store, and the log says so.
    return;
  }
}

// The window may be unloaded by a handler that runs inside a yield of a longer one, or while a box is open.
// The event loop ends when none of them is left.
void Program::End_When_Unwound() {
  constexpr int next_look = 20;  // milliseconds
  ending_.StartOnce(next_look);
}

int Program::OnExit() {
  app_.reset();
  limits_.reset();
  stores_.Keep_Marks_In(nullptr);
  stored_protection_.reset();
  // Before wxWidgets shuts down OLE.
  system_outlook_.reset();
  help_.reset();
  if (observer_ != nullptr && frame_ != nullptr) observer_->Window_Ends();
  if (message_window_ != nullptr) message_window_->Destroy();
  if (frame_ != nullptr) frame_->Destroy();
  DeletePendingObjects();
  schedule_.reset();
  return wxApp::OnExit();
}

bool Program::OnExceptionInMainLoop() {
  // Procedures report their own failures; this one comes from a widget's event handler.
  try {
    throw;
  } catch (const std::exception& error) {
    Show_Error(frame_, error.what());
  }
  return true;
}

}  // namespace tidyfold
