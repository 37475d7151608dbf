// The bar between two panes.
#pragma once

#include <wx/window.h>

#include "controls/widgets.h"
#include "desktop/common/control_binder.h"
#include "desktop/common/scale.h"

namespace tidyfold {

// Draws a handle, and a frame while it has the focus.
class Splitter_Bar : public wxWindow {
 public:
  explicit Splitter_Bar(wxWindow* parent);
  bool AcceptsFocus() const override { return IsThisEnabled(); }
  bool AcceptsFocusFromKeyboard() const override { return AcceptsFocus(); }

 private:
  void Paint(wxPaintEvent& event);
  bool hot_ = false;
};

// Passes drags to the model. The left and right arrow keys move the bar by a step.
class Splitter_Bar_Binder : public Control_Binder {
 public:
  Splitter_Bar_Binder(PictureBox& model, Splitter_Bar& widget, const Scale& scale);

 private:
  void Show_Model() override;
  void Drag_By(int pixels);
  void Follow_Pointer();
  void Let_Go(int x);

  PictureBox& model_;
  Splitter_Bar& widget_;
  const Scale& scale_;
  int grip_ = 0;  // where the pointer holds the bar, in pixels from its left edge
};

}  // namespace tidyfold
