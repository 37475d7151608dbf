// Ties one widget to its control model, both ways.
#pragma once

#include <wx/window.h>

#include <functional>
#include <utility>

#include "controls/control.h"
#include "desktop/common/scale.h"

namespace tidyfold {

// Shows what every control has (enabled, visible, tooltip, name) and keeps the two directions apart: while
// the widget is being brought in line with the model, its events are not the user's. The model must outlive
// the binder, and the binder must not outlive its widget's use.
class Control_Binder {
 public:
  Control_Binder(Control& model, wxWindow& widget);
  Control_Binder(const Control_Binder&) = delete;
  Control_Binder& operator=(const Control_Binder&) = delete;
  virtual ~Control_Binder();

  // From now on the widget stands where the model says; without this it stands where its sizer puts it.
  void Follow_Position(const Scale& scale);
  // Brings the widget in line with the model.
  void Show();

 protected:
  virtual void Show_Model() {}

  // Runs what the program does to the widget.
  template <class Action>
  void From_Program(Action&& action) {
    struct Restore {
      bool& flag;
      bool outer;
      ~Restore() { flag = outer; }
    } const restore{showing_, std::exchange(showing_, true)};
    std::forward<Action>(action)();
  }
  // Runs what the user did to the widget, unless it was the model that did it.
  template <class Action>
  void From_User(Action&& action) {
    if (!showing_) std::forward<Action>(action)();
  }

 private:
  Control& model_;
  wxWindow& widget_;
  const Scale* scale_ = nullptr;
  bool showing_ = false;
};

}  // namespace tidyfold
