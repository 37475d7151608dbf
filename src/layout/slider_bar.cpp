#include "layout/slider_bar.h"

#include <cmath>
#include <cstdint>

namespace tidyfold {

void SliderBar::Setup(Control& left, Control& right, PictureBox& bar, int bar_width) {
  left_ = &left;
  right_ = &right;
  bar_ = &bar;
  bar.Set_Mouse_Pointer(MousePointer::Size_West_East);
  if (bar_width > 0) bar.Set_Width(static_cast<Twips>(bar_width));
  bar.Set_Top(left.Top());
  bar.Set_Height(left.Height());
  right.Set_Top(left.Top());
  right.Set_Height(left.Height());
  left.Set_Width(bar.Left() - left.Left());
  right.Set_Left(bar.Left() + bar.Width());
}

void SliderBar::Mouse_Move(Twips x) {
  if (!ResizingWindows) return;
  if (bar_->Left() + x < left_->Left()) {
    bar_->Set_Left(left_->Left());
  } else if (bar_->Left() + bar_->Width() + x > right_->Left() + right_->Width()) {
    bar_->Set_Left(right_->Left() + right_->Width() - bar_->Width());
  } else {
    bar_->Set_Left(bar_->Left() + x);
  }
}

void SliderBar::Mouse_Up() {
  if (bar_->Left() - left_->Left() > 0) {
    left_->Set_Width(bar_->Left() - left_->Left());
  } else {
    left_->Set_Width(0);
    bar_->Set_Left(left_->Left());
  }
  const auto right_edge = static_cast<Twips>(std::lround(right_->Left() + right_->Width()));
  const Twips bar_end = bar_->Left() + bar_->Width();
  right_->Set_Left(right_edge - bar_end > 0 ? bar_end : right_edge);
  if (right_edge - right_->Left() > 0) {
    right_->Set_Width(right_edge - right_->Left());
  } else {
    right_->Set_Width(0);
    right_->Set_Left(right_edge);
  }
  ResizingWindows = false;
}

bool SliderBar::Needs_Applying() const {
  return left_->Left() + left_->Width() != bar_->Left() || bar_->Left() + bar_->Width() != right_->Left();
}

}  // namespace tidyfold
