// The options at the right of the window.
#pragma once

#include <wx/scrolwin.h>
#include <wx/sizer.h>

#include <functional>
#include <vector>

#include "controls/main_window.h"
#include "desktop/common/binders.h"
#include "desktop/common/date_box.h"
#include "desktop/common/simple_binders.h"

namespace tidyfold {

// Three groups of check boxes, each under a heading; what belongs to an option is indented below it. Scrolls
// if the window is too low; what stands side by side goes below each other if it is too narrow.
class Options_Panel : public wxScrolledWindow {
 public:
  // Keep a Copy First shows where copies can be kept.
  Options_Panel(wxWindow* parent, MainWindow& model, bool keeps_copies);

  // Creates the widgets and adds their binders.
  void Bind_To_Model(Binders& binders);
  // Passes pending edits to the model; see Text_Box_Binder::Settle. False where the cut-off date is none:
  // then the panel says so, and the keyboard is in its box.
  bool Settle();

 private:
  wxBoxSizer* Start_Group(Label& heading);
  void Separate(Line& line);
  wxCheckBox* New_Check_Box(CheckBox& model);
  void Add_Option(wxBoxSizer& group, CheckBox& model);
  void Add_Filters(wxBoxSizer& group);
  wxFlexGridSizer* New_Pairs();
  void Fold_If_Narrow();
  void Say_How_Subjects_Match(wxStaticText& how, wxTextCtrl& subject);

  MainWindow& model_;
  bool keeps_copies_;
  Binders* binders_ = nullptr;
  wxBoxSizer* column_ = nullptr;
  // Two boxes in a line, or one in a narrow panel.
  std::vector<wxFlexGridSizer*> pairs_;
  // In pixels, without the right margin.
  int width_of_pairs_ = 0;
  Text_Box_Binder* subject_ = nullptr;
  Date_Box_Binder* cutoff_date_ = nullptr;
};

}  // namespace tidyfold
