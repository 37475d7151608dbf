// The small window that shows the progress of start-up.
#pragma once

#include <wx/frame.h>

#include "controls/main_window.h"
#include "desktop/common/binders.h"

namespace tidyfold {

// Shows the model frmMessageBox. It has no frame and no buttons; the program closes it.
class Message_Window : public wxFrame {
 public:
  explicit Message_Window(MainWindow& model);
  ~Message_Window() override;

 private:
  void Show_Form();

  MainWindow& model_;
  Binders binders_;
};

}  // namespace tidyfold
