#include "desktop/common/control_binder.h"

#include "desktop/common/text_conversion.h"

namespace tidyfold {

Control_Binder::Control_Binder(Control& model, wxWindow& widget) : model_(model), widget_(widget) {
  widget_.SetName(To_Wx(model_.Name()));
  model_.changed = [this] { Show(); };
}

Control_Binder::~Control_Binder() {
  model_.changed = nullptr;
}

void Control_Binder::Follow_Position(const Scale& scale, wxWindow* whole) {
  scale_ = &scale;
  whole_ = whole;
  Show();
}

void Control_Binder::Show() {
  From_Program([this] {
    if (widget_.IsThisEnabled() != model_.Enabled()) widget_.Enable(model_.Enabled());
    if (const wxString tip = To_Lines(model_.Tool_Tip_Text()); !Has_Own_Tips() && tip != shown_tip_)
      Tip_Area().SetToolTip(shown_tip_ = tip);
    wxWindow& placed = whole_ != nullptr ? *whole_ : widget_;
    bool visible = model_.Visible();
    if (scale_ != nullptr) {
      // Converts edges, not widths, so that neighbours meet without a gap.
      const int left = scale_->Pixels(model_.Left()), top = scale_->Pixels(model_.Top());
      const int right = scale_->Pixels(model_.Left() + model_.Width());
      const int bottom = scale_->Pixels(model_.Top() + model_.Height());
      if (right > left && bottom > top) {
        placed.SetSize(left, top, right - left, bottom - top);
      } else {
        visible = false;
      }
    }
    if (placed.IsShown() != visible) placed.Show(visible);
    Show_Model();
  });
}

}  // namespace tidyfold
