// The box of a date: a text, with a calendar to choose it from.
#pragma once

#include <wx/button.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/weakref.h>

#include <memory>
#include <optional>

#include "controls/widgets.h"
#include "desktop/common/control_binder.h"

namespace tidyfold {

class Calendar_Popup;

// Shows the date as the list does, yyyy-mm-dd; also takes it in the locale's form. The model has the last
// date that was taken; a text that is none is red, the complaint below says so, and the keyboard stays there.
class Date_Box_Binder : public Control_Binder {
 public:
  // `opener` opens the calendar.
  Date_Box_Binder(DatePicker& model, wxTextCtrl& widget, wxButton& opener, wxStaticText& complaint);
  ~Date_Box_Binder() override;
  // Takes what is typed, and raises Validate if it was. False for a text that is no date; then the box
  // complains and gets the keyboard.
  bool Settle_Or_Complain();

 private:
  void Show_Model() override;
  void Show_Date();
  void Key_Pressed(wxKeyEvent& event);
  bool Move_By_Key(int key);
  void Left();
  std::optional<Date> Written() const;
  // Into the model; false for a text that is no date, after a complaint.
  bool Take();
  void Complain(bool complains);
  void Open_Calendar();
  void Chosen(Date date);

  DatePicker& model_;
  wxTextCtrl& widget_;
  wxButton& opener_;
  wxStaticText& complaint_;
  wxString form_;  // the locale's, as strftime takes it
  std::optional<Date> shown_;
  bool edited_ = false;
  wxWeakRef<Calendar_Popup> calendar_;
};

}  // namespace tidyfold
