// Keeps one widget and its control model in step, both ways.
#pragma once

#include <wx/window.h>

#include <functional>
#include <utility>

#include "controls/control.h"
#include "desktop/common/scale.h"

namespace tidyfold {

// Shows what every control has (enabled, visible, tooltip, name) and separates the two directions: events
// that the widget sends while the binder updates it are not the user's. The model must outlive the binder,
// and the binder must be destroyed before its widget is.
class Control_Binder {
 public:
  Control_Binder(Control& model, wxWindow& widget);
  Control_Binder(const Control_Binder&) = delete;
  Control_Binder& operator=(const Control_Binder&) = delete;
  virtual ~Control_Binder();

  // From now on the widget's position is the model's; otherwise it is that of its sizer. `whole` is what
  // stands there in its place: a pane that the widget is part of.
  void Follow_Position(const Scale& scale, wxWindow* whole = nullptr);
  // Updates the widget from the model.
  void Show();

 protected:
  virtual void Show_Model() {}
  // Whether the widget shows tips by itself, for parts of it.
  virtual bool Has_Own_Tips() const { return false; }
  // The part of the widget that the pointer is over: only there does Windows show a tooltip.
  virtual wxWindow& Tip_Area() { return widget_; }

  // Runs a change that the program makes to the widget.
  template <class Action>
  void From_Program(Action&& action) {
    struct Restore {
      bool& flag;
      bool outer;
      ~Restore() { flag = outer; }
    } const restore{showing_, std::exchange(showing_, true)};
    std::forward<Action>(action)();
  }
  // Handles an event of the widget, unless the program caused it.
  template <class Action>
  void From_User(Action&& action) {
    if (!showing_) std::forward<Action>(action)();
  }

 private:
  Control& model_;
  wxWindow& widget_;
  const Scale* scale_ = nullptr;
  wxWindow* whole_ = nullptr;
  wxString shown_tip_;
  bool showing_ = false;
};

}  // namespace tidyfold
