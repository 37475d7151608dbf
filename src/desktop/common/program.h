// The window program: its store, its window and its event loop.
#pragma once

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/timer.h>
#include <wx/weakref.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "base/system_clock.h"
#include "clean/stored_limits.h"
#include "controls/main_window.h"
#include "desktop/common/desktop_events.h"
#include "desktop/common/desktop_message_box.h"
#include "desktop/common/program_observer.h"
#include "desktop/common/repaint_schedule.h"
#include "desktop/common/server_waits.h"
#include "desktop/common/store_files.h"
#include "export/export.h"
#include "export/store_copies.h"
#include "outlook/store_session.h"
#include "outlook/stored_protection.h"
#include "runs/run_log.h"
#include "stores/opening/open_store.h"

namespace tidyfold {

struct App;
class Desktop_Help;
class Main_Frame;
class Message_Window;

class Program : public wxApp {
 public:
  // The stores to open, and files to open or to import; where no store is named, those that were open last
  // are opened. The observer may be absent.
  Program(std::vector<Store_Address> stores, std::vector<std::filesystem::path> files,
          Program_Observer* observer);
  ~Program() override;

  bool OnInit() override;
  int OnExit() override;
  bool OnExceptionInMainLoop() override;

 private:
  void Start();
  bool Open_First_Stores();
  void Build();
  void Show_Runs();
  void Export(const MAPIFolder_Ptr& folder);
  void Remember_Copy_Directory();
  void Compact();
  void Close_Store();
  void Tell_Desktop(const std::string& text);
  void Offer_To_Compact_After(std::function<void()>& command);
  void Change_Stores(const std::function<bool()>& change);
  void Session_Ends();
  void End_When_Unwound();
  void Commit();

  std::vector<Store_Address> first_stores_;
  std::vector<std::filesystem::path> first_files_;
  Program_Observer* observer_;
  // What the window works on: Outlook, when it is there and no store was named, or stores of its own.
  std::unique_ptr<Automation> system_outlook_;
  Server_Waits waits_;
  Store_Session stores_{&Open_Store};
  System_Clock clock_;
  Store_Copies copies_{[this](const std::string& store_id, const std::string& entry_id) {
                         return stores_.Read_Whole_Item(store_id, entry_id);
                       },
                       clock_};
  Run_Log log_{Default_Run_Log_File()};
  Desktop_Events events_;
  Desktop_Message_Box message_box_;
  MainWindow window_;

  std::unique_ptr<Registry> registry_;
  std::unique_ptr<Store_Files> files_;
  // Made when a store is open; taken down in reverse order after the event loop has ended.
  std::unique_ptr<Repaint_Schedule> schedule_;
  Main_Frame* frame_ = nullptr;
  Message_Window* message_window_ = nullptr;
  wxWeakRef<wxFrame> runs_window_;
  std::unique_ptr<Desktop_Help> help_;
  std::unique_ptr<Stored_Limits> limits_;
  std::unique_ptr<Stored_Protection> stored_protection_;
  std::unique_ptr<App> app_;

  bool loading_ = false;
  wxTimer ending_;
  // What a box of a run says, for a person who looks at another window.
  wxTimer telling_;
  std::string to_tell_;
};

}  // namespace tidyfold
