// What the window shows, for a test that drives it from outside.
#pragma once

#include <wx/timer.h>

#include <memory>
#include <string>
#include <vector>

#include "desktop/common/program_observer.h"

namespace tidyfold {

// The environment variable TIDYFOLD_WINDOW_STATE names a file. It holds, as JSON, every named widget on the
// screen with its rectangle in screen pixels and whether it is enabled, the texts that are shown, the first
// nodes of the tree and rows of the grid, the menus with their keys and which entries have been chosen,
// all with their rectangles, how far long work has come, and the message
// boxes and other windows that are open. It is replaced as a whole whenever that has changed.
class Window_State_File : public Program_Observer {
 public:
  void Program_Started() override;
  void Window_Built(wxFrame& frame, const MainWindow& window) override;
  void Window_Ends() override { timer_.reset(); }
  void Box_Opened(const std::string& text) override { boxes_.push_back(text); }
  void Box_Closed() override;

 private:
  void Write();
  std::string Describe() const;

  wxFrame* frame_ = nullptr;
  const MainWindow* window_ = nullptr;
  std::string path_, written_;
  std::vector<std::string> boxes_;
  int boxes_closed_ = 0;
  // The menu's entries that were chosen, by mouse or key.
  std::vector<std::string> commands_;
  int under_way_ = 0;
  bool passing_on_ = false;
  std::unique_ptr<wxTimer> timer_;
};

}  // namespace tidyfold
