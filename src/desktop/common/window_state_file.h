// What the window shows, for a program that drives it from outside.
#pragma once

#include <wx/frame.h>
#include <wx/timer.h>

#include <memory>
#include <string>
#include <vector>

#include "controls/main_window.h"

namespace tidyfold {

// When the environment variable TIDYFOLD_WINDOW_STATE names a file, that file holds, as JSON, every named
// widget on the screen with its rectangle in screen pixels and whether it is enabled, the texts that are
// shown, the first nodes of the tree and rows of the grid with their rectangles, how far long work has come,
// and the message boxes and other windows that are open. It is replaced as a whole whenever that has changed.
class Window_State_File {
 public:
  // Nothing when the variable is not set.
  static std::unique_ptr<Window_State_File> If_Asked_For(wxFrame& frame, MainWindow& window);
  Window_State_File(wxFrame& frame, MainWindow& window, std::string path);

  void Box_Opened(const std::string& text);
  void Box_Closed();

 private:
  void Write();
  std::string Describe() const;

  wxFrame& frame_;
  MainWindow& window_;
  std::string path_;
  std::string written_;
  std::vector<std::string> boxes_;
  int boxes_closed_ = 0;
  wxTimer timer_;
};

}  // namespace tidyfold
