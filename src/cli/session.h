// The program at work on the stores of the command line, without a visible window.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/app.h"
#include "base/system_clock.h"
#include "clean/stored_limits.h"
#include "cli/arguments.h"
#include "cli/chosen_stores.h"
#include "cli/cli_events.h"
#include "cli/run_limits.h"
#include "cli/store_folders.h"
#include "cli/terminal.h"
#include "cli/terminal_message_box.h"
#include "controls/main_window.h"
#include "export/store_copies.h"
#include "outlook/folder_data.h"
#include "outlook/stored_protection.h"

namespace tidyfold::cli {

// Whether protected folders are kept from being chosen. Whoever only lists may look into them.
enum class Protection { Heeded, Ignored };

// For listing.
class No_Protection : public Folder_Protection {
 public:
  bool Is_Protected(const std::string&, const std::string&) override { return false; }
  void Set_Protected(const std::string&, const std::string&, bool) override {}
  bool Can_Change(const std::string&) override { return false; }
};

class Session {
 public:
  // Opens the stores and lists their folders. Throws Store_Open_Error, Failure where Outlook cannot be
  // reached. A limit of the Deleted Items folders stands for the stored ones as long as the session lasts.
  Session(const Arguments& arguments, Store_Mode mode, Terminal& terminal, Answering answering, bool quiet,
          Protection protection = Protection::Heeded);

  // Builds the tree and reads every item, as the window does when it opens. Throws Failure if that was
  // cancelled or incomplete: nothing may be decided on partial data.
  void Load();
  // Commits pending changes. Throws Automation_Error if they could not be kept.
  void Commit();

  const std::vector<Store_Folder>& Folders() const { return folders_; }
  // In the order of the paths. Throws Failure if a path does not match exactly one folder.
  std::vector<Store_Folder> Find(const std::vector<std::string>& paths) const;
  const FolderData_Array& Records() const { return app_.records; }
  // The index of a folder in the tree and the records.
  int Node(const Store_Folder& folder) const;
  // The same by its identifiers; 0 if there is no such folder.
  int Find_Node(const std::string& store_id, const std::string& entry_id) const;
  // What opens an open store again; empty in Outlook.
  std::string Place_Of_Store(const std::string& store_id) const {
    return stores_.Source().Place_Of_Store(store_id);
  }

  MainWindow& Window() { return window_; }
  App& Program() { return app_; }
  Run_Log& Log() { return log_; }
  const Terminal_Message_Box& Messages() const { return message_box_; }

 private:
  void Events_Due();
  Folder_Protection& Marks(Protection protection);

  Terminal& terminal_;
  Chosen_Stores stores_;
  std::vector<Store_Folder> folders_;
  Terminal_Message_Box message_box_;
  Cli_Events events_;
  System_Clock clock_;
  Run_Log log_{Default_Run_Log_File()};
  std::unique_ptr<Registry> registry_;
  Stored_Limits stored_limits_{*registry_};
  Run_Limits limits_;
  Store_Copies copies_;
  No_Protection no_protection_;
  Stored_Protection stored_protection_;  // of folders whose stores keep none
  MainWindow window_;
  App app_;
  std::unordered_map<std::string, int> nodes_;  // by the folder's identifiers
  bool loading_ = false;
  bool interrupt_handled_ = false;
};

}  // namespace tidyfold::cli
