#include "desktop/common/simple_binders.h"

#include "desktop/common/system_look.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

constexpr int enter_key = 13;

// Without other keys, which make it a key of the menu.
bool Is_Enter(const wxKeyEvent& event) {
  return !event.HasAnyModifiers() &&
         (event.GetKeyCode() == WXK_RETURN || event.GetKeyCode() == WXK_NUMPAD_ENTER);
}

}  // namespace

Check_Box_Binder::Check_Box_Binder(CheckBox& model, wxCheckBox& widget)
    : Control_Binder(model, widget), model_(model), widget_(widget) {
  widget_.Bind(wxEVT_CHECKBOX, [this](wxCommandEvent& event) {
    From_User([&] { model_.Set_Value(event.IsChecked() ? 1 : 0); });
    // A handler that refuses the change may have set the model back meanwhile.
    Show();
  });
  Show();
}

void Check_Box_Binder::Show_Model() {
  if (const wxString label = To_Wx(model_.Caption()); label != widget_.GetLabel()) widget_.SetLabel(label);
  if (widget_.GetValue() != model_.Checked()) widget_.SetValue(model_.Checked());
}

Button_Binder::Button_Binder(CommandButton& model, wxButton& widget, std::function<bool()> settle)
    : Control_Binder(model, widget),
      model_(model),
      widget_(widget),
      dangerous_caption_(model.Caption()),
      settle_(std::move(settle)) {
  widget_.Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
    From_User([&] {
      if (settle_()) Raise(model_.Click);
    });
  });
  Show();
}

void Button_Binder::Show_Model() {
  // As Cancel it harms nothing.
  Look_Dangerous(widget_, model_.Caption() == dangerous_caption_);
  if (const wxString label = To_Wx(model_.Caption()); label != widget_.GetLabel()) widget_.SetLabel(label);
}

Label_Binder::Label_Binder(Label& model, wxStaticText& widget)
    : Control_Binder(model, widget), model_(model), widget_(widget) {
  Show();
}

void Label_Binder::Show_Model() {
  // An "&" in a folder's name is not a mnemonic.
  if (const wxString label = To_Lines(model_.Caption()); label != widget_.GetLabelText())
    widget_.SetLabelText(label);
}

Text_Box_Binder::Text_Box_Binder(TextBox& model, wxTextCtrl& widget)
    : Control_Binder(model, widget), model_(model), widget_(widget) {
  widget_.Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
    From_User([&] {
      model_.Set_Text(From_Wx(widget_.GetValue()));
      edited_ = true;
      Raise(model_.Change);
    });
  });
  widget_.Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (!Is_Enter(event)) return event.Skip();
    edited_ = false;
    Raise(model_.KeyPress, enter_key);
  });
  widget_.Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
    event.Skip();
    Settle();
  });
  Show();
}

void Text_Box_Binder::Settle() {
  if (std::exchange(edited_, false)) Raise(model_.Validate);
}

void Text_Box_Binder::Show_Model() {
  if (const wxString text = To_Wx(model_.Text()); text != widget_.GetValue()) widget_.ChangeValue(text);
}

}  // namespace tidyfold
