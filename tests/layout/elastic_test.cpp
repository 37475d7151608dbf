#include <gtest/gtest.h>

#include <stdexcept>

#include "layout/class_elastic.h"

namespace tidyfold {
namespace {

struct Window {
  Window() {
    for (Control* control : controls) {
      control->Set_Left(100);
      control->Set_Width(1000);
      control->Set_Height(500);
    }
    Resize_By(0, 0);
    elastic.Init(form, controls);
  }
  void Resize_By(Twips wider, Twips taller) {
    form.Set_Width(9600 + wider);
    form.Set_Height(7200 + taller);
    elastic.FormResize(form);
  }
  void Expect(const Control& control, Twips left, Twips width, Twips height) {
    EXPECT_EQ(control.Left(), left) << control.Name();
    EXPECT_EQ(control.Width(), width) << control.Name();
    EXPECT_EQ(control.Height(), height) << control.Name();
  }

  Form form{"frm"};
  Control browser{"WebBrowser1"}, width_only{"FrameWEBrowser"}, height_only{"FrameWebBrowser"},
      toolbar{"Toolbar3"}, unknown{"webbrowser1"};
  std::vector<Control*> controls{&browser, &width_only, &height_only, &toolbar, &unknown};
  class_Elastic elastic;
};

TEST(Elastic, Only_The_Controls_It_Knows_By_Name_Follow_The_Window) {
  Window window;
  window.Resize_By(0, 0);
  window.Resize_By(1000, 500);
  window.Expect(window.browser, 100, 2000, 1000);
  window.Expect(window.width_only, 100, 2000, 500);
  window.Expect(window.height_only, 100, 1000, 1000);
  window.Expect(window.toolbar, 1100, 1000, 500);
  window.Expect(window.unknown, 100, 1000, 500);
  // Many sizes later the designed one brings back the designed places: nothing adds up.
  window.Resize_By(-777, 33);
  window.Resize_By(0, 0);
  for (const Control* control : window.controls) window.Expect(*control, 100, 1000, 500);
}

TEST(Elastic, The_First_Resize_Changes_Nothing_And_Leaves_AutoRedraw_On) {
  Window window;
  window.form.AutoRedraw = false;
  window.Resize_By(1000, 500);
  window.Expect(window.browser, 100, 1000, 500);
  EXPECT_TRUE(window.form.AutoRedraw);
  window.form.AutoRedraw = false;
  window.Resize_By(1000, 500);
  window.Expect(window.browser, 100, 2000, 1000);
  EXPECT_FALSE(window.form.AutoRedraw);
}

TEST(Elastic, A_Window_Too_Large_For_16_Bits_Cannot_Be_Recorded) {
  Window window;
  window.form.Set_Width(32767);
  EXPECT_NO_THROW(window.elastic.Init(window.form, window.controls));
  window.form.Set_Width(32768);
  EXPECT_THROW(window.elastic.Init(window.form, window.controls), std::overflow_error);
}

}  // namespace
}  // namespace tidyfold
