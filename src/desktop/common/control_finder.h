// The control that a person points at.
#pragma once

#include <wx/frame.h>

#include "controls/main_window.h"

namespace tidyfold {

// Looks through the widgets of the main window, enabled or not. What has no model of its own belongs to what
// it stands in, in the end to the window itself.
class Control_Finder {
 public:
  Control_Finder(const wxFrame& frame, MainWindow& window) : frame_(frame), window_(window) {}

  // At a place of the screen; none outside the window.
  const Control* At(const wxPoint& place) const;
  const Control* Of_Widget(const wxWindow* widget) const;
  // An entry of the menus, by what is written on it.
  const Control* Of_Menu_Entry(const wxString& label) const;

 private:
  const wxFrame& frame_;
  MainWindow& window_;
};

}  // namespace tidyfold
