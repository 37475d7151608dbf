// The options of a run as a value.
#pragma once

#include <string>

#include "controls/main_window.h"
#include "plan/item_filter.h"

namespace tidyfold {

struct Run_Options {
  bool by_row = false;
  bool turbo = false;
  bool delete_folders = false;
  bool permanent = false;
  bool confirm_folders = false;
  bool confirm_items = false;
  bool show_all_folders = false;
  // Where a copy is kept of what goes for good; empty: none is.
  std::string copy_directory;
  Item_Filter filter;

  // Nothing of the items is asked: all in a marked folder go.
  bool Takes_Everything() const { return turbo || delete_folders; }
  // What decides, for a person, one line each.
  std::string In_Words() const;
};

// The options that are ticked at this moment, with the filter in force.
Run_Options Read_Options(const MainWindow& window, const Item_Filter& in_force);

}  // namespace tidyfold
