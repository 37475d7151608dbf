#include "desktop/common/program.h"

#include <wx/evtloop.h>
#include <wx/log.h>
#include <wx/notifmsg.h>
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
#include "desktop/common/system_look.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/welcome_dialog.h"
#include "desktop/common/window_place.h"
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
  telling_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) {
    if (frame_ == nullptr || message_box_.Open_Boxes() == 0 || Is_Program_In_Front()) return;
    frame_->RequestUserAttention();
    // A desktop that shows no notifications is no failure.
    const wxLogNull quiet;
    wxNotificationMessage(application_title, To_Lines(to_tell_).Trim(false), frame_).Show();
  });
  CallAfter([this] { Start(); });
  return true;
}

void Program::Start() {
  registry_ = Make_System_Registry([this](const std::string& text) {
    message_box_.Show(text, Buttons::OK_Only, Icon::None, application_title);
  });
  if (observer_ != nullptr) observer_->Program_Started();
  files_ = std::make_unique<Store_Files>(stores_, *registry_, waits_);
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
    return Welcome_Dialog(*files_, message_box_).ShowModal() == wxID_OK;
  }
  if (first_stores_.empty()) {
    system_outlook_ = Make_Outlook_Source();
    if (system_outlook_) return true;
    first_stores_ = Last_Stores(*registry_);
  }
  if (!first_stores_.empty() && files_->Open(nullptr, first_stores_)) return true;
  return Welcome_Dialog(*files_, message_box_).ShowModal() == wxID_OK;
}

void Program::Build() {
  schedule_ = std::make_unique<Repaint_Schedule>();
  File_Commands commands;
  if (!system_outlook_) {
    commands.Open_Store = [this] { Change_Stores([this] { return files_->Ask_And_Open(frame_); }); };
    if (Can_Open(Store_Address::Kind::Maildir))
      commands.Open_Maildir = [this] {
        Change_Stores([this] { return files_->Ask_And_Open_Maildir(frame_); });
      };
    if (Can_Open(Store_Address::Kind::Imap_Tls))
      commands.Open_Account = [this] {
        Change_Stores([this] { return files_->Ask_And_Open_Account(frame_); });
      };
    commands.Recent_Stores = [this] { return files_->Recent(); };
    commands.Open_Recent = [this](const std::string& store) {
      Change_Stores([&] { return files_->Open(frame_, {Read_Store_Address(store)}); });
    };
    commands.Close_Store = [this] { Close_Store(); };
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
  if (Restore_Place(*frame_, *registry_)) frame_->Take_Over_Size();
  frame_->leaving = [this] { Keep_Place(*frame_, *registry_); };
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
  events_.before_yield = [this] { stores_.Commit_Due(); };
  message_box_.opening = [this](const std::string& text) {
    schedule_->Flush();
    if (observer_ != nullptr) observer_->Box_Opened(text);
    Tell_Desktop(text);
  };
  message_box_.not_shown_again = std::make_unique<User_Values>(*registry_, "Software\\Tidyfold\\Window");
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
      window_,
      Surroundings{outlook, message_box_, events_, clock_, log_, *limits_, protection, &help_->Environment(),
                   system_outlook_ || !Can_Export() ? nullptr : &copies_, registry_.get()});
  for (auto* const reset : {&window_.mnuResetWindow.Click, &window_.mnuResetOptions.Click}) {
    *reset = [this, first = std::move(*reset)] {
      first();
      message_box_.Show_All_Again();
    };
  }
  window_.mnuResetWindow.Click = [this, first = std::move(window_.mnuResetWindow.Click)] {
    frame_->Take_First_Size();
    Raise(window_.frmRemoveItems.Resize);
    first();
  };
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

// The store of the current folder. Of the last one nothing may be in use any more when another is opened.
void Program::Close_Store() {
  const int folder = window_.trvFolders.Selected_Item();
  if (stores_.Open_Stores().empty()) return;
  std::string store_id = stores_.Open_Stores().front()->StoreID();
  if (app_->records.Has(folder) && app_->records[folder].Folder != nullptr)
    store_id = app_->records[folder].Folder->StoreID();
  if (!files_->Close(frame_, store_id)) return;
  if (!stores_.Open_Stores().empty()) return Raise(window_.mnuRefresh.Click);
  window_.grdItems.Set_Rows(1);
  app_->records.Recreate();
  window_.trvFolders.Clear();
  app_->rows.CurrentNodeIndex = 0;
  if (Welcome_Dialog(*files_, message_box_).ShowModal() == wxID_OK) {
    Raise(window_.mnuRefresh.Click);
  } else {
    Raise(window_.frmRemoveItems.Close);
  }
}

// A box that opens in the course of a run, when the person has been looking at something else for a while.
void Program::Tell_Desktop(const std::string& text) {
  if (app_ == nullptr || !app_->phase.Is_Run()) return;
  constexpr int a_while = 700;  // milliseconds
  to_tell_ = text.substr(0, text.find('\r'));
  telling_.StartOnce(a_while);
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
  if (GetMainLoop() == nullptr || GetMainLoop()->IsYielding() || waits_.Are_Under_Way()) return;
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
