// Finds the control that a person points at.
#pragma once

#include <wx/frame.h>

#include "controls/main_window.h"

namespace tidyfold {

// Searches the widgets of the main window, disabled ones included. A widget without a model belongs to its
// parent, in the end to the window.
class Control_Finder {
 public:
  Control_Finder(const wxFrame& frame, MainWindow& window) : frame_(frame), window_(window) {}

  // At a position on the screen; null outside the window.
  const Control* At(const wxPoint& place) const;
  const Control* Of_Widget(const wxWindow* widget) const;
  // A menu entry, by its label.
  const Control* Of_Menu_Entry(const wxString& label) const;

 private:
  const wxFrame& frame_;
  MainWindow& window_;
};

}  // namespace tidyfold
