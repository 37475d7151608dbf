#include "desktop/common/date_box.h"

#include <wx/calctrl.h>
#include <wx/generic/calctrlg.h>
#include <wx/popupwin.h>
#include <wx/sizer.h>
#include <wx/uilocale.h>

#include <chrono>
#include <cmath>

#include "base/written_date.h"
#include "desktop/common/accessibility.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/theme.h"

namespace tidyfold {

namespace {

constexpr int enter_key = 13;
constexpr Colour red = 0x0000C8;

wxDateTime To_Wx_Date(Date date) {
  const std::chrono::year_month_day day{date_epoch + std::chrono::days{std::lround(std::floor(date))}};
  return wxDateTime(static_cast<wxDateTime::wxDateTime_t>(static_cast<unsigned>(day.day())),
                    static_cast<wxDateTime::Month>(static_cast<unsigned>(day.month()) - 1),
                    static_cast<int>(day.year()));
}

Date From_Wx_Date(const wxDateTime& date) {
  return Date_Of(std::chrono::year{date.GetYear()} / (static_cast<int>(date.GetMonth()) + 1) / date.GetDay());
}

// The day that a key moves a date to.
std::optional<Date> Moved(Date date, int key, bool by_weeks) {
  const wxDateTime day = To_Wx_Date(date);
  switch (key) {
    case WXK_LEFT:
      return date - 1;
    case WXK_RIGHT:
      return date + 1;
    case WXK_UP:
      return by_weeks ? date - 7 : date + 1;
    case WXK_DOWN:
      return by_weeks ? date + 7 : date - 1;
    case WXK_PAGEUP:
      return From_Wx_Date(day - wxDateSpan::Month());
    case WXK_PAGEDOWN:
      return From_Wx_Date(day + wxDateSpan::Month());
    default:
      return std::nullopt;
  }
}

}  // namespace

// Takes its keys also where the box keeps the keyboard and passes them on.
class Calendar_Popup : public wxPopupTransientWindow {
 public:
  Calendar_Popup(wxWindow* parent, Date date, std::function<void(Date)> chosen)
      : wxPopupTransientWindow(parent, wxBORDER_SIMPLE),
        chosen_(std::move(chosen)),
        calendar_(new wxGenericCalendarCtrl(
            this, wxID_ANY, To_Wx_Date(date), wxDefaultPosition, wxDefaultSize,
            wxCAL_SEQUENTIAL_MONTH_SELECTION | First_Day() | wxCAL_SHOW_SURROUNDING_WEEKS | wxBORDER_NONE)) {
    calendar_->SetName("calCutoffDate");
    // The calendar's own colours suit bright themes alone.
    const wxColour background = Theme_Background();
    calendar_->SetBackgroundColour(background);
    calendar_->SetForegroundColour(Theme_Text());
    // The month and its arrows are black in any theme.
    calendar_->SetHeaderColours(*wxBLACK, wxColour(0xdd, 0xdd, 0xdd));
    calendar_->SetHighlightColours(Theme_Chosen_Text(), Theme_Chosen_Background());
    calendar_->SetHolidayColours(Text_Colour(red, background), background);
    Set_Spoken_Name(*calendar_, "Calendar");
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(calendar_, wxSizerFlags(1).Expand());
    SetSizerAndFit(sizer);
    for (wxWindow* const part : {static_cast<wxWindow*>(this), static_cast<wxWindow*>(calendar_)}) {
      part->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (event.HasAnyModifiers() || !Take_Key(event.GetKeyCode())) event.Skip();
      });
    }
    calendar_->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
      event.Skip();
      wxDateTime day;
      const wxCalendarHitTestResult hit = calendar_->HitTest(event.GetPosition(), &day);
      if (hit != wxCAL_HITTEST_DAY && hit != wxCAL_HITTEST_SURROUNDING_WEEK) return;
      if (day.IsValid()) CallAfter([this, day] { Choose(From_Wx_Date(day)); });
    });
  }

  // False for a key that is none of the calendar's.
  bool Take_Key(int key) {
    const Date date = From_Wx_Date(calendar_->GetDate());
    if (key == WXK_RETURN || key == WXK_NUMPAD_ENTER) {
      Choose(date);
    } else if (key == WXK_ESCAPE) {
      DismissAndNotify();
    } else if (const auto moved = Moved(date, key, true)) {
      calendar_->SetDate(To_Wx_Date(*moved));
    } else {
      return false;
    }
    return true;
  }

 protected:
  void OnDismiss() override {
    CallAfter([this] { Destroy(); });
  }

 private:
  static long First_Day() {
    wxDateTime::WeekDay first = wxDateTime::Mon;
    return wxDateTime::GetFirstWeekDay(&first) && first == wxDateTime::Sun ? wxCAL_SUNDAY_FIRST
                                                                           : wxCAL_MONDAY_FIRST;
  }
  void Choose(Date date) {
    if (!IsShown()) return;
    DismissAndNotify();
    chosen_(date);
  }

  std::function<void(Date)> chosen_;
  wxGenericCalendarCtrl* calendar_;
};

Date_Box_Binder::Date_Box_Binder(DatePicker& model, wxTextCtrl& widget, wxButton& opener,
                                 wxStaticText& complaint)
    : Control_Binder(model, widget),
      model_(model),
      widget_(widget),
      opener_(opener),
      complaint_(complaint),
      form_(wxUILocale::GetCurrent().GetInfo(wxLOCALE_SHORT_DATE_FMT)) {
  opener_.SetName("cmdCalendar");
  opener_.SetToolTip("Calendar (Alt+Down)");
  complaint_.SetName("lblNoDate");
  complaint_.SetForegroundColour(Text_Colour(red, complaint_.GetParent()->GetBackgroundColour()));
  complaint_.Hide();
  widget_.Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
    From_User([&] {
      edited_ = true;
      if (complaint_.IsShown() && Written()) Complain(false);
    });
  });
  widget_.Bind(wxEVT_CHAR_HOOK, &Date_Box_Binder::Key_Pressed, this);
  widget_.Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
    event.Skip();
    // Once the focus has arrived where it goes.
    widget_.CallAfter([this] { Left(); });
  });
  opener_.Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Open_Calendar(); });
  Show();
}

Date_Box_Binder::~Date_Box_Binder() = default;

std::optional<Date> Date_Box_Binder::Written() const {
  return Read_Date(From_Wx(widget_.GetValue()), From_Wx(form_));
}

bool Date_Box_Binder::Take() {
  const std::optional<Date> date = Written();
  Complain(!date);
  if (!date) return false;
  if (*date != std::floor(model_.Value())) model_.Set_Value(*date);
  Show_Date();
  return true;
}

bool Date_Box_Binder::Settle_Or_Complain() {
  if (!model_.Enabled()) return true;
  if (!edited_ && !complaint_.IsShown()) return true;
  if (!Take()) {
    widget_.SetFocus();
    return false;
  }
  Raise(model_.Validate);
  return true;
}

void Date_Box_Binder::Left() {
  if (calendar_ != nullptr || widget_.HasFocus()) return;
  wxWindow* const focus = wxWindow::FindFocus();
  // Another window may be looked at; the calendar's button chooses another date.
  if (focus == nullptr || focus == &opener_ || !wxGetTopLevelParent(&widget_)->IsDescendant(focus)) return;
  Settle_Or_Complain();
}

void Date_Box_Binder::Key_Pressed(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  const bool alone = !event.HasAnyModifiers();
  if (calendar_ != nullptr && alone && calendar_->Take_Key(key)) return;
  if ((key == WXK_DOWN && event.GetModifiers() == wxMOD_ALT) || (key == WXK_F4 && alone)) {
    Open_Calendar();
  } else if (alone && (key == WXK_RETURN || key == WXK_NUMPAD_ENTER)) {
    if (Take()) Raise(model_.KeyDown, enter_key);
  } else if (key == WXK_TAB && !Settle_Or_Complain()) {
    return;
  } else if (alone && key == WXK_ESCAPE && (edited_ || complaint_.IsShown())) {
    // Back to the date in force.
    Show_Date();
    Complain(false);
  } else if (!alone || !Move_By_Key(key)) {
    event.Skip();
  }
}

bool Date_Box_Binder::Move_By_Key(int key) {
  if (key != WXK_UP && key != WXK_DOWN && key != WXK_PAGEUP && key != WXK_PAGEDOWN) return false;
  if (const std::optional<Date> date = Written()) {
    const Date moved = Moved(*date, key, false).value_or(*date);
    widget_.SetValue(To_Wx(Format_Date(moved)));
  }
  return true;
}

void Date_Box_Binder::Complain(bool complains) {
  // An empty colour is the theme's.
  widget_.SetForegroundColour(complains ? Text_Colour(red, widget_.GetBackgroundColour()) : wxColour());
  widget_.Refresh();
  if (complains == complaint_.IsShown()) return;
  wxWindow& panel = *complaint_.GetParent();
  if (complains) {
    wxString text = "This is no date. Write it as 2015-12-31";
    if (Read_Date(From_Wx(To_Wx_Date(Date_Of(std::chrono::year(2015) / 12 / 31)).Format(form_)),
                  From_Wx(form_)))
      text += " or as " + To_Wx_Date(Date_Of(std::chrono::year(2015) / 12 / 31)).Format(form_);
    complaint_.SetLabelText(text + ".");
    complaint_.Wrap(panel.GetClientSize().x * 4 / 5);
  }
  complaint_.Show(complains);
  panel.FitInside();
  panel.Layout();
}

void Date_Box_Binder::Open_Calendar() {
  if (calendar_ != nullptr || !model_.Enabled()) return;
  calendar_ = new Calendar_Popup(widget_.GetParent(), Written().value_or(model_.Value()),
                                 [this](Date date) { Chosen(date); });
  calendar_->Position(widget_.GetScreenPosition(), wxSize(0, widget_.GetSize().y));
  widget_.SetFocus();
  calendar_->Popup(&widget_);
}

void Date_Box_Binder::Chosen(Date date) {
  model_.Set_Value(date);
  Show_Date();
  Complain(false);
  widget_.SetFocus();
  widget_.SelectAll();
  Raise(model_.CloseUp);
}

void Date_Box_Binder::Show_Date() {
  shown_ = model_.Value();
  edited_ = false;
  if (const wxString text = To_Wx(Format_Date(*shown_)); text != widget_.GetValue())
    widget_.ChangeValue(text);
}

void Date_Box_Binder::Show_Model() {
  opener_.Enable(model_.Enabled());
  if (shown_ == model_.Value() && model_.Enabled()) return;
  Show_Date();
  Complain(false);
}

}  // namespace tidyfold
