#include "desktop/common/status_bar_binder.h"

#include <wx/numformatter.h>

#include <algorithm>

#include "desktop/common/accessibility.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

constexpr int gauge_range = 1000;
constexpr int gauge_width = 120;  // unscaled pixels
constexpr int gauge_margin = 3, text_margin = 16;
constexpr int share_of_selected = 35;  // of the bar's width, in percent, while nothing runs

}  // namespace

Status_Bar_Binder::Status_Bar_Binder(StatusBar& model, wxStatusBar& widget, Repaint_Schedule& schedule)
    : Control_Binder(model, widget),
      model_(model),
      widget_(widget),
      gauge_(new wxGauge(&widget, wxID_ANY, gauge_range, wxDefaultPosition, wxDefaultSize, wxGA_SMOOTH)),
      schedule_(schedule) {
  widget_.SetFieldsCount(field_count);
  gauge_->SetName("sbStatusBarGauge");
  gauge_->Hide();
  Share_Room();
  widget_.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    Share_Room();
    Place_Gauge();
  });
  Show();
}

Status_Bar_Binder::~Status_Bar_Binder() {
  schedule_.Forget(*this);
}

void Status_Bar_Binder::Show_Model() {
  schedule_.Mark(*this);
}

void Status_Bar_Binder::Catch_Up() {
  for (int panel = 1; panel <= StatusBar::panel_count; ++panel) {
    const wxString text = To_One_Line(model_.Panel_Text(panel));
    if (text != widget_.GetStatusText(panel - 1)) widget_.SetStatusText(text, panel - 1);
  }
  Show_Gauge();
  Share_Room();
  wxString words;
  for (int panel = 1; panel <= StatusBar::panel_count; ++panel)
    if (const wxString text = To_One_Line(model_.Panel_Text(panel)); !text.empty())
      words += (words.empty() ? "" : "; ") + text;
  Set_Spoken_Name(widget_, words.empty() ? wxString("Status") : words, Spoken_As::Status);
}

void Status_Bar_Binder::Show_Gauge() {
  const std::int64_t total = model_.Gauge_Total();
  // While the field has its room: where it has next to none, the toolkit would paint less than nothing.
  if (total <= 0) widget_.SetStatusText(wxString(), StatusBar::panel_count);
  if ((total > 0) != gauge_->IsShown()) {
    gauge_->Show(total > 0);
    Share_Room();
    Place_Gauge();
  }
  if (total <= 0) return;
  const std::int64_t done = std::clamp<std::int64_t>(model_.Gauge_Done(), 0, total);
  gauge_->SetValue(static_cast<int>(done * gauge_range / total));
  const wxString left = wxNumberFormatter::ToString(static_cast<long>(total - done)) + " left";
  if (left != widget_.GetStatusText(StatusBar::panel_count))
    widget_.SetStatusText(left, StatusBar::panel_count);
}

void Status_Bar_Binder::Share_Room() {
  // A run's counts and the help of a menu entry are both long; the help may use the gauge's room while
  // nothing runs. What is selected is never cut off.
  const int left_width = widget_.GetTextExtent("88,888,888 left").x;
  const int selected = widget_.GetTextExtent(widget_.GetStatusText(StatusBar::panel_count - 1)).x +
                       widget_.FromDIP(text_margin);
  const bool is_tight = selected > widget_.GetClientSize().x * share_of_selected / 100;
  const Widths at_work = {-24, -46, -30, left_width, widget_.FromDIP(gauge_width)};
  const Widths at_rest = {-45, -20, is_tight ? selected : -share_of_selected, 1, 1};
  const Widths& widths = gauge_->IsShown() ? at_work : at_rest;
  if (widths == widths_) return;
  widths_ = widths;
  widget_.SetStatusWidths(field_count, widths_.data());
}

void Status_Bar_Binder::Place_Gauge() {
  wxRect field;
  if (gauge_->IsShown() && widget_.GetFieldRect(field_count - 1, field))
    gauge_->SetSize(field.Deflate(widget_.FromDIP(gauge_margin)));
}

}  // namespace tidyfold
