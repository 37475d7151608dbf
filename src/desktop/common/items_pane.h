// The middle of the window: the search box, the list, and the preview below it.
#pragma once

#include <wx/grid.h>
#include <wx/panel.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "controls/main_window.h"
#include "desktop/common/binders.h"
#include "desktop/common/grid_binder.h"

namespace tidyfold {

// Has the place of the model's grid.
class Items_Pane : public wxPanel {
 public:
  Items_Pane(wxWindow* parent, MainWindow& model);

  // Adds the binders of its widgets; returns that of the list.
  Grid_Binder& Bind_To_Model(Binders& binders, Repaint_Schedule& schedule, const Scale& scale);
  // The keyboard to the search box, with what stands there selected.
  void Go_To_Search();
  void Go_To_List() { grid_->GetGridWindow()->SetFocus(); }

 private:
  void Search_Key(wxKeyEvent& event);
  void Lay_Out();

  MainWindow& model_;
  wxTextCtrl* search_;
  wxStaticText* found_;
  wxGrid* grid_;
  wxTextCtrl* preview_;
};

}  // namespace tidyfold
