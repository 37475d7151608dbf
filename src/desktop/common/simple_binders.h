// The binders of check boxes, buttons, labels and the text box.
#pragma once

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <string>

#include "controls/widgets.h"
#include "desktop/common/control_binder.h"

namespace tidyfold {

class Check_Box_Binder : public Control_Binder {
 public:
  Check_Box_Binder(CheckBox& model, wxCheckBox& widget);

 private:
  void Show_Model() override;
  CheckBox& model_;
  wxCheckBox& widget_;
};

// The button that deletes: it looks like one while it bears its first caption.
class Button_Binder : public Control_Binder {
 public:
  // `settle` runs before every click; where it says no, the click does nothing.
  Button_Binder(CommandButton& model, wxButton& widget, std::function<bool()> settle);

 private:
  void Show_Model() override;
  CommandButton& model_;
  wxButton& widget_;
  std::string dangerous_caption_;
  std::function<bool()> settle_;
};

// Ends a text that does not fit with an ellipsis.
class Label_Binder : public Control_Binder {
 public:
  Label_Binder(Label& model, wxStaticText& widget);

 private:
  void Show_Model() override;
  Label& model_;
  wxStaticText& widget_;
};

// Typing only changes the model's text; Enter and leaving the box raise the model's events.
class Text_Box_Binder : public Control_Binder {
 public:
  Text_Box_Binder(TextBox& model, wxTextCtrl& widget);
  // Raises Validate if something was typed since the last event. Commands that work without leaving the box
  // call it first, so that they act on what is shown.
  void Settle();

 private:
  void Show_Model() override;
  TextBox& model_;
  wxTextCtrl& widget_;
  bool edited_ = false;
};

}  // namespace tidyfold
