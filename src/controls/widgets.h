// Models of the simple controls. Trees and grids have headers of their own.
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>

#include "base/dates.h"
#include "controls/control.h"

namespace tidyfold {

// Runs an event's handler when there is one.
template <class Handler, class... Arguments>
void Raise(const Handler& handler, Arguments... arguments) {
  if (handler) handler(arguments...);
}

// A control with a caption; "&" marks the mnemonic.
class Captioned : public Control {
 public:
  explicit Captioned(std::string name, std::string caption = {})
      : Control(std::move(name)), caption_(std::move(caption)) {}
  const std::string& Caption() const { return caption_; }
  void Set_Caption(std::string_view caption) { Assign(caption_, caption); }

 private:
  std::string caption_;
};

using Label = Captioned;
using Frame = Captioned;

class CommandButton : public Captioned {
 public:
  using Captioned::Captioned;
  std::function<void()> Click;
};

class MenuItem : public Captioned {
 public:
  using Captioned::Captioned;
  // Shown before an entry that stands for a state.
  bool Checked() const { return checked_; }
  void Set_Checked(bool checked) { Assign(checked_, checked); }
  std::function<void()> Click;

 private:
  bool checked_ = false;
};

class CheckBox : public Captioned {
 public:
  using Captioned::Captioned;
  // 1 checked, 0 not.
  int Value() const { return value_; }
  bool Checked() const { return value_ == 1; }
  // A change runs Click, whether the user made it or the program did.
  void Set_Value(int value) {
    if (Assign(value_, value)) Raise(Click);
  }
  std::function<void()> Click;

 private:
  int value_ = 0;
};

class TextBox : public Control {
 public:
  using Control::Control;
  const std::string& Text() const { return text_; }
  void Set_Text(std::string_view text) { Assign(text_, text); }
  Colour Back_Colour() const { return back_colour_; }
  void Set_Back_Colour(Colour colour) { Assign(back_colour_, colour); }
  std::function<void(int key_code)> KeyPress;
  // The box loses the focus.
  std::function<void()> Validate;

 private:
  std::string text_;
  Colour back_colour_ = system_window_background;
};

class DatePicker : public Control {
 public:
  using Control::Control;
  Date Value() const { return value_; }
  void Set_Value(Date value) { Assign(value_, value); }
  std::function<void()> CloseUp;
  std::function<void(int key_code)> KeyDown;
  std::function<void()> Validate;

 private:
  Date value_ = 0;
};

enum class MousePointer { Default = 0, Size_West_East = 9 };

// Stands in this window for a splitter's bar. Mouse positions are twips inside the bar.
class PictureBox : public Control {
 public:
  using Control::Control;
  MousePointer Mouse_Pointer() const { return mouse_pointer_; }
  void Set_Mouse_Pointer(MousePointer pointer) { Assign(mouse_pointer_, pointer); }
  std::function<void(Twips x)> MouseDown, MouseMove, MouseUp;

 private:
  MousePointer mouse_pointer_ = MousePointer::Default;
};

// A separator line; X1 and X2 are twips inside its frame.
class Line : public Control {
 public:
  using Control::Control;
  Twips X1() const { return x1_; }
  Twips X2() const { return x2_; }
  void Set_X1(Twips x) { Assign(x1_, x); }
  void Set_X2(Twips x) { Assign(x2_, x); }

 private:
  Twips x1_ = 0, x2_ = 0;
};

class StatusBar : public Control {
 public:
  static constexpr int panel_count = 3;
  using Control::Control;
  // Panels count from 1. Throws std::out_of_range for a panel that is not there.
  const std::string& Panel_Text(int panel) const { return panels_.at(static_cast<std::size_t>(panel - 1)); }
  void Set_Panel_Text(int panel, std::string_view text) {
    Assign(panels_.at(static_cast<std::size_t>(panel - 1)), text);
  }
  // How far long work has come; a total of 0 hides the gauge.
  std::int64_t Gauge_Done() const { return gauge_done_; }
  std::int64_t Gauge_Total() const { return gauge_total_; }
  void Set_Gauge(std::int64_t done, std::int64_t total) {
    if (done == gauge_done_ && total == gauge_total_) return;
    gauge_done_ = done;
    gauge_total_ = total;
    Notify();
  }

 private:
  std::array<std::string, panel_count> panels_;
  std::int64_t gauge_done_ = 0, gauge_total_ = 0;
};

// A window. It is loaded until Unload is called; its front end then closes it.
class Form : public Captioned {
 public:
  explicit Form(std::string name, std::string caption = {}) : Captioned(std::move(name), std::move(caption)) {
    Set_Visible(false);
  }
  bool Loaded() const { return loaded_; }
  void Load() { Assign(loaded_, true); }
  // One that is visible already comes to the front.
  void Show() {
    const bool was_visible = Visible();
    Load();
    Set_Visible(true);
    if (was_visible) Notify();
  }
  void Hide() { Set_Visible(false); }
  void Unload() {
    Set_Visible(false);
    Assign(loaded_, false);
  }
  Colour Back_Colour() const { return system_button_face; }
  // Whether the platform keeps the window's drawing and repaints it by itself.
  bool AutoRedraw = false;
  // The user closes the window; the handler unloads it.
  std::function<void()> Close;
  // The window's size has changed.
  std::function<void()> Resize;

 private:
  bool loaded_ = false;
};

}  // namespace tidyfold
