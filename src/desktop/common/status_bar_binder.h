// The status bar's panels and its gauge.
#pragma once

#include <wx/gauge.h>
#include <wx/statusbr.h>

#include <array>

#include "controls/widgets.h"
#include "desktop/common/control_binder.h"
#include "desktop/common/repaint_schedule.h"

namespace tidyfold {

// The panels' texts change with every item of a run but are repainted at the pace of Repaint_Schedule. While
// a menu is open, the help of its entry covers the first panel. Two more fields after the panels show how
// much of long work is left, and its gauge.
class Status_Bar_Binder : public Control_Binder, public Late_Widget {
 public:
  Status_Bar_Binder(StatusBar& model, wxStatusBar& widget, Repaint_Schedule& schedule);
  ~Status_Bar_Binder() override;

  void Catch_Up() override;

 private:
  void Show_Model() override;
  void Show_Gauge();
  void Share_Room();
  void Place_Gauge();

  StatusBar& model_;
  wxStatusBar& widget_;
  wxGauge* gauge_;  // owned by the widget
  Repaint_Schedule& schedule_;

  static constexpr int field_count = StatusBar::panel_count + 2;
  using Widths = std::array<int, field_count>;
  Widths widths_{};
};

}  // namespace tidyfold
