// The events of the program that a test can observe.
#pragma once

#include <wx/frame.h>

#include <string>

#include "controls/main_window.h"

namespace tidyfold {

class Program_Observer {
 public:
  virtual ~Program_Observer() = default;
  // Windows may open from now on, before the main one is built.
  virtual void Program_Started() {}
  // The frame and the model live until Window_Ends returns.
  virtual void Window_Built(wxFrame& frame, const MainWindow& window) = 0;
  virtual void Window_Ends() = 0;
  virtual void Box_Opened(const std::string& text) = 0;
  virtual void Box_Closed() = 0;
};

}  // namespace tidyfold
