#include <gtest/gtest.h>

#include <stdexcept>

#include "layout/class_elastic.h"
#include "layout/slider_bar.h"

namespace tidyfold {
namespace {

using Place = std::vector<Twips>;

TEST(Elastic, Only_The_Controls_It_Knows_By_Name_Follow_The_Window) {
  Form form{"frm"};
  Control both{"WebBrowser1"}, width{"FrameWEBrowser"}, height{"FrameWebBrowser"}, left{"Toolbar3"},
      unknown{"webbrowser1"};
  const std::vector<Control*> controls{&both, &width, &height, &left, &unknown};
  class_Elastic elastic;
  const auto resize_by = [&](Twips wider, Twips taller) {
    form.Set_Width(9600 + wider);
    form.Set_Height(7200 + taller);
    elastic.FormResize(form);
  };
  const auto places = [&] {
    std::vector<Place> all;
    for (const Control* control : controls)
      all.push_back({control->Left(), control->Width(), control->Height()});
    return all;
  };
  for (Control* control : controls) {
    control->Set_Left(100);
    control->Set_Width(1000);
    control->Set_Height(500);
  }
  const std::vector<Place> designed = places();
  resize_by(0, 0);
  elastic.Init(form, controls);
  form.AutoRedraw = false;
  resize_by(1000, 500);
  EXPECT_EQ(places(), designed) << "the first resize changes nothing";
  EXPECT_TRUE(form.AutoRedraw);
  form.AutoRedraw = false;
  resize_by(1000, 500);
  EXPECT_EQ(
      places(),
      (std::vector<Place>{
          {100, 2000, 1000}, {100, 2000, 500}, {100, 1000, 1000}, {1100, 1000, 500}, {100, 1000, 500}}));
  EXPECT_FALSE(form.AutoRedraw);
  resize_by(-777, 33);
  resize_by(0, 0);
  EXPECT_EQ(places(), designed) << "rounding does not add up";

  form.Set_Width(32767);
  EXPECT_NO_THROW(elastic.Init(form, controls));
  form.Set_Width(32768);
  EXPECT_THROW(elastic.Init(form, controls), std::overflow_error) << "sizes are recorded in 16 bits";
}

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
  Place Drag(Twips by) {
    slider_.Mouse_Down();
    slider_.Mouse_Move(by);
    slider_.Mouse_Up();
    return Places();
  }
  // The left pane's width, the bar's left, the right pane's left and width.
  Place Places() const { return {left_.Width(), bar_.Left(), right_.Left(), right_.Width()}; }
  Control left_{"left"}, right_{"right"};
  PictureBox bar_{"bar"};
  SliderBar slider_;
};

TEST_F(Slider, Setup_Joins_The_Panes_To_The_Bar_And_A_Release_Closes_Gaps) {
  const Place joined{900, 1000, 1090, 1910};
  EXPECT_EQ(Places(), joined);
  EXPECT_EQ(bar_.Top() + right_.Top(), 100);
  EXPECT_EQ(bar_.Height() + right_.Height(), 1400);
  EXPECT_EQ(bar_.Mouse_Pointer(), MousePointer::Size_West_East);
  left_.Set_Width(10);
  EXPECT_TRUE(slider_.Needs_Applying());
  slider_.Mouse_Up();
  EXPECT_EQ(Places(), joined);
  EXPECT_FALSE(slider_.Needs_Applying());
  bar_.Set_Left(3500);
  slider_.Mouse_Up();
  EXPECT_EQ(Places(), (Place{3400, 3500, 3000, 0}));
  bar_.Set_Left(1000);
  slider_.Setup(left_, right_, bar_, 60);
  EXPECT_EQ(right_.Left(), 1060);
}

TEST_F(Slider, Drags_Within_And_To_Both_Ends) {
  slider_.Mouse_Move(300);
  EXPECT_EQ(Places(), (Place{900, 1000, 1090, 1910})) << "no button is down";
  EXPECT_EQ(Drag(200), (Place{1100, 1200, 1290, 1710}));
  EXPECT_EQ(Drag(-5000), (Place{0, 100, 190, 2810}));
  EXPECT_EQ(Drag(5000), (Place{2810, 2910, 3000, 0}));
  slider_.Mouse_Move(-100);
  EXPECT_EQ(Places(), (Place{2810, 2910, 3000, 0})) << "the button is up again";
  EXPECT_EQ(Drag(-2000), (Place{810, 910, 1000, 2000}));
}

}  // namespace
}  // namespace tidyfold
