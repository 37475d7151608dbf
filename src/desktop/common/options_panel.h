// The options at the right of the window.
#pragma once

#include <wx/scrolwin.h>
#include <wx/sizer.h>

#include <functional>

#include "controls/main_window.h"
#include "desktop/common/binders.h"
#include "desktop/common/simple_binders.h"

namespace tidyfold {

// Three groups of check boxes, each under its heading; what an option needs stands indented below it. Scrolls
// when the window is too low for all of it.
class Options_Panel : public wxScrolledWindow {
 public:
  Options_Panel(wxWindow* parent, MainWindow& model);

  // Adds the binders of everything on the panel, the panel included.
  void Bind_To_Model(Binders& binders);
  // Tells the model of edits that no event has told of yet.
  void Settle();

 private:
  wxBoxSizer* Start_Group(Label& heading);
  void Separate(Line& line);
  wxCheckBox* New_Check_Box(CheckBox& model);
  void Add_Option(wxBoxSizer& group, CheckBox& model);
  void Add_Filters(wxBoxSizer& group);

  MainWindow& model_;
  Binders* binders_ = nullptr;
  wxBoxSizer* column_ = nullptr;
  Text_Box_Binder* subject_ = nullptr;
  Date_Picker_Binder* cutoff_date_ = nullptr;
};

}  // namespace tidyfold
