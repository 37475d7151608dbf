#include "plan/run_options.h"

namespace tidyfold {

std::string Run_Options::In_Words() const {
  std::string words;
  const auto add = [&](bool on, const char* name) {
    if (on) words += (words.empty() ? "" : "; ") + std::string(name);
  };
  add(turbo, "Turbo");
  add(delete_folders && !turbo, "Delete Folders");
  add(permanent, "Permanent Delete");
  add(by_row, "Select By Row");
  add(confirm_folders, "Confirm Each Folder");
  add(confirm_items, "Confirm Each Item");
  if (!copy_directory.empty()) add(true, ("Keep a Copy First: " + copy_directory).c_str());
  if (!by_row && !Takes_Everything()) add(true, filter.In_Words().c_str());
  return words;
}

Run_Options Read_Options(const MainWindow& window, const Item_Filter& in_force) {
  Run_Options options;
  options.by_row = window.chkSelectByRow.Checked();
  options.turbo = window.chkTurbo.Checked();
  options.delete_folders = window.chkDeleteFolders.Checked();
  options.permanent = window.chkPermanentDelete.Checked();
  options.confirm_folders = window.chkConfirmFolders.Checked();
  options.confirm_items = window.chkConfirmItems.Checked();
  options.show_all_folders = window.chkShowAllFolders.Checked();
  if (window.chkKeepCopy.Checked()) options.copy_directory = window.copy_directory;
  options.filter = in_force;
  return options;
}

}  // namespace tidyfold
