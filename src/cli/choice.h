// Ticking boxes and folders as a person does in the window, so that every rule of the window holds.
#pragma once

#include "cli/arguments.h"
#include "cli/session.h"
#include "controls/widgets.h"

namespace tidyfold::cli {

class Choice {
 public:
  explicit Choice(Session& session) : session_(session), window_(session.Window()) {}

  // Options, then filters. Throws Failure where the window would not let the one be ticked beside the other.
  void Set(const Options& options, const Filters& filters);
  // Throws Failure where the window refuses the mark.
  void Mark(const Store_Folder& folder);

  // Marking one folder marks what lies below it.
  void Mark_Sub_Folders();

 private:
  void Set_Filters(const Filters& filters);
  void Tick(CheckBox& box, const char* option);

  Session& session_;
  MainWindow& window_;
};

}  // namespace tidyfold::cli
