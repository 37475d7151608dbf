#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "layout/class_elastic.h"

namespace tidyfold {
namespace {

struct Window {
  Window() {
    form.Set_Width(9600);
    form.Set_Height(7200);
    for (Control* control : controls) {
      control->Set_Left(100);
      control->Set_Top(200);
      control->Set_Width(1000);
      control->Set_Height(500);
    }
  }
  void Resize_By(Twips wider, Twips taller) {
    form.Set_Width(9600 + wider);
    form.Set_Height(7200 + taller);
    elastic.FormResize(form);
  }

  Form form{"frm"};
  Control browser{"WebBrowser1"}, width_only{"FrameWEBrowser"}, height_only{"FrameWebBrowser"},
      toolbar{"Toolbar3"}, wrong_case{"webbrowser1"};
  std::vector<Control*> controls{&browser, &width_only, &height_only, &toolbar, &wrong_case};
  class_Elastic elastic;
};

TEST(Elastic, Only_The_Controls_It_Knows_By_Name_Follow_The_Window) {
  Window window;
  window.elastic.Init(window.form, window.controls);
  window.Resize_By(0, 0);
  window.Resize_By(1000, 500);
  const struct {
    const Control& control;
    Twips left, width, height;
  } after[] = {{window.browser, 100, 2000, 1000},
               {window.width_only, 100, 2000, 500},
               {window.height_only, 100, 1000, 1000},
               {window.toolbar, 1100, 1000, 500},
               {window.wrong_case, 100, 1000, 500}};
  for (const auto& a : after) {
    EXPECT_EQ(a.control.Left(), a.left) << a.control.Name();
    EXPECT_EQ(a.control.Top(), 200) << a.control.Name();
    EXPECT_EQ(a.control.Width(), a.width) << a.control.Name();
    EXPECT_EQ(a.control.Height(), a.height) << a.control.Name();
  }
  // Many sizes later the designed one brings back the designed places: nothing adds up.
  window.Resize_By(-777, 33);
  window.Resize_By(0, 0);
  EXPECT_EQ(window.browser.Width(), 1000);
  EXPECT_EQ(window.toolbar.Left(), 100);
}

TEST(Elastic, The_First_Resize_Changes_Nothing_And_Leaves_AutoRedraw_On) {
  Window window;
  window.elastic.Init(window.form, window.controls);
  window.Resize_By(1000, 500);
  EXPECT_EQ(window.browser.Width(), 1000);
  EXPECT_TRUE(window.form.AutoRedraw);
  window.form.AutoRedraw = false;
  window.Resize_By(1000, 500);
  EXPECT_EQ(window.browser.Width(), 2000);
  EXPECT_FALSE(window.form.AutoRedraw);
}

TEST(Elastic, A_Control_That_Refuses_Does_Not_Keep_The_Next_From_Following) {
  Window window;
  window.elastic.Init(window.form, window.controls);
  window.Resize_By(0, 0);
  window.browser.changed = [] { throw std::runtime_error("no"); };
  window.form.AutoRedraw = true;
  window.Resize_By(1000, 0);
  EXPECT_EQ(window.width_only.Width(), 2000);
}

TEST(Elastic, Sizes_Are_16_Bit) {
  Window window;
  window.form.Set_Width(32767);
  window.browser.Set_Width(40000);
  EXPECT_NO_THROW(window.elastic.Init(window.form, window.controls));
  window.elastic.FormResize(window.form);
  window.form.Set_Width(32768);
  window.elastic.FormResize(window.form);
  EXPECT_EQ(window.browser.Width(), 1) << "a control too wide to be recorded counts as 0";
  EXPECT_THROW(window.elastic.Init(window.form, window.controls), std::overflow_error);
}

}  // namespace
}  // namespace tidyfold
