#include "desktop/common/simple_binders.h"

#include <wx/dateevt.h>

#include <chrono>
#include <cmath>

#include "base/dates.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

constexpr int enter_key = 13;

wxDateTime To_Wx_Date(Date date) {
  const std::chrono::year_month_day day{date_epoch + std::chrono::days{std::lround(std::floor(date))}};
  return wxDateTime(static_cast<wxDateTime::wxDateTime_t>(static_cast<unsigned>(day.day())),
                    static_cast<wxDateTime::Month>(static_cast<unsigned>(day.month()) - 1),
                    static_cast<int>(day.year()));
}

Date From_Wx_Date(const wxDateTime& date) {
  return Date_Of(std::chrono::year{date.GetYear()} / (static_cast<int>(date.GetMonth()) + 1) / date.GetDay());
}

bool Is_Enter(const wxKeyEvent& event) {
  return event.GetKeyCode() == WXK_RETURN || event.GetKeyCode() == WXK_NUMPAD_ENTER;
}

void For_All_Children(wxWindow& window, const std::function<void(wxWindow&)>& action) {
  action(window);
  for (wxWindow* const child : window.GetChildren()) For_All_Children(*child, action);
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

Button_Binder::Button_Binder(CommandButton& model, wxButton& widget, std::function<void()> settle)
    : Control_Binder(model, widget), model_(model), widget_(widget), settle_(std::move(settle)) {
  widget_.Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
    From_User([&] {
      settle_();
      Raise(model_.Click);
    });
  });
  Show();
}

void Button_Binder::Show_Model() {
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

Date_Picker_Binder::Date_Picker_Binder(DatePicker& model, wxDatePickerCtrl& widget)
    : Control_Binder(model, widget), model_(model), widget_(widget) {
  widget_.Bind(wxEVT_DATE_CHANGED, [this](wxDateEvent&) { From_User([&] { Take_Date(); }); });
  widget_.Bind(wxEVT_COMBOBOX_CLOSEUP, [this](wxCommandEvent& event) {
    event.Skip();
    // The date is valid only after the calendar has closed.
    widget_.CallAfter([this] {
      Take_Date();
      edited_ = false;
      Raise(model_.CloseUp);
    });
  });
  widget_.Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (!Is_Enter(event)) return event.Skip();
    Take_Date();
    edited_ = false;
    Raise(model_.KeyDown, enter_key);
  });
  For_All_Children(widget_, [this](wxWindow& part) {
    part.Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
      event.Skip();
      // The picker parses a typed date in its own handler of this event.
      widget_.CallAfter([this] { Settle(); });
    });
  });
  Show();
}

void Date_Picker_Binder::Settle() {
  Take_Date();
  if (std::exchange(edited_, false)) Raise(model_.Validate);
}

void Date_Picker_Binder::Take_Date() {
  const wxDateTime date = widget_.GetValue();
  if (!date.IsValid() || From_Wx_Date(date) == std::floor(model_.Value())) return;
  edited_ = true;
  model_.Set_Value(From_Wx_Date(date));
}

void Date_Picker_Binder::Show_Model() {
  const wxDateTime date = To_Wx_Date(model_.Value());
  if (!widget_.GetValue().IsValid() || !widget_.GetValue().IsSameDate(date)) widget_.SetValue(date);
}

}  // namespace tidyfold
