#include "layout/slider_bar.h"

#include <gtest/gtest.h>

namespace tidyfold {
namespace {

// Left pane, bar and right pane, as they stand after Setup: 100..1000, 1000..1090, 1090..3000.
class Slider : public testing::Test {
 protected:
  Slider() {
    left_.Set_Left(100);
    left_.Set_Top(50);
    left_.Set_Height(700);
    bar_.Set_Left(1000);
    bar_.Set_Width(90);
    right_.Set_Width(1910);
    slider_.Setup(left_, right_, bar_, 0);
  }
  void Drag(Twips by) {
    slider_.Mouse_Down();
    slider_.Mouse_Move(by);
    slider_.Mouse_Up();
  }
  void Expect(Twips left_width, Twips bar, Twips right, Twips right_width) {
    EXPECT_EQ(left_.Width(), left_width);
    EXPECT_EQ(bar_.Left(), bar);
    EXPECT_EQ(right_.Left(), right);
    EXPECT_EQ(right_.Width(), right_width);
  }
  Control left_{"left"}, right_{"right"};
  PictureBox bar_{"bar"};
  SliderBar slider_;
};

TEST_F(Slider, Setup_Joins_The_Panes_To_The_Bar) {
  Expect(900, 1000, 1090, 1910);
  EXPECT_EQ(bar_.Top() + right_.Top(), 100);
  EXPECT_EQ(bar_.Height() + right_.Height(), 1400);
  EXPECT_EQ(bar_.Mouse_Pointer(), MousePointer::Size_West_East);
  slider_.Setup(left_, right_, bar_, 60);
  EXPECT_EQ(right_.Left(), 1060);
}

TEST_F(Slider, Drags_Within_And_To_Both_Ends) {
  slider_.Mouse_Move(300);
  Expect(900, 1000, 1090, 1910);
  Drag(200);
  Expect(1100, 1200, 1290, 1710);
  Drag(-5000);
  Expect(0, 100, 190, 2810);
  Drag(5000);
  Expect(2810, 2910, 3000, 0);
  slider_.Mouse_Move(-100);
  Expect(2810, 2910, 3000, 0);
  Drag(-2000);
  Expect(810, 910, 1000, 2000);
}

TEST_F(Slider, A_Release_Without_A_Drag_Closes_Gaps) {
  left_.Set_Width(10);
  EXPECT_TRUE(slider_.Needs_Applying());
  slider_.Mouse_Up();
  Expect(900, 1000, 1090, 1910);
  EXPECT_FALSE(slider_.Needs_Applying());
  bar_.Set_Left(3500);
  slider_.Mouse_Up();
  Expect(3400, 3500, 3000, 0);
}

}  // namespace
}  // namespace tidyfold
