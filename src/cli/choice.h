// Ticks boxes and folders as a person does in the window, so that all of the window's rules apply.
#pragma once

#include "cli/arguments.h"
#include "cli/session.h"
#include "controls/widgets.h"

namespace tidyfold::cli {

class Choice {
 public:
  explicit Choice(Session& session) : session_(session), window_(session.Window()) {}

  // Options, then filters. Throws Failure if the window does not allow the combination.
  void Set(const Options& options, const Filters& filters);
  // Throws Failure if the folder is protected or the window refuses the mark.
  void Mark(const Store_Folder& folder);

  // Marking a folder marks its sub-folders.
  void Mark_Sub_Folders();

 private:
  [[noreturn]] void Fail_Protected(const Store_Folder& folder);
  void Set_Filters(const Filters& filters);
  void Tick(CheckBox& box, const char* option);

  Session& session_;
  MainWindow& window_;
};

}  // namespace tidyfold::cli
