// What every control of a window has, whatever shows it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "controls/values.h"

namespace tidyfold {

// The toolkit-free state of one control. The front end sets `changed` and redraws its widget when it is
// called; the program sets the event members (named as the platform names them: Click, MouseUp, ...).
class Control {
 public:
  explicit Control(std::string name) : name_(std::move(name)) {}
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control() = default;

  const std::string& Name() const { return name_; }

  bool Enabled() const { return enabled_; }
  void Set_Enabled(bool enabled) { Assign(enabled_, enabled); }
  bool Visible() const { return visible_; }
  void Set_Visible(bool visible) { Assign(visible_, visible); }

  // Twips, relative to the window's client area.
  Twips Left() const { return left_; }
  Twips Top() const { return top_; }
  Twips Width() const { return width_; }
  Twips Height() const { return height_; }
  void Set_Left(Twips left) { Assign(left_, left); }
  void Set_Top(Twips top) { Assign(top_, top); }
  void Set_Width(Twips width) { Assign(width_, width); }
  void Set_Height(Twips height) { Assign(height_, height); }

  const std::string& Tool_Tip_Text() const { return tool_tip_text_; }
  void Set_Tool_Tip_Text(std::string_view text) { Assign(tool_tip_text_, text); }

  // The help topic's context identifier; see the help folder for how it and the tag are used.
  std::int32_t Whats_This_Help_ID() const { return whats_this_help_id_; }
  void Set_Whats_This_Help_ID(std::int32_t id) { Assign(whats_this_help_id_, id); }
  const std::string& Tag() const { return tag_; }
  void Set_Tag(std::string_view tag) { Assign(tag_, tag); }

  std::function<void()> changed;

 protected:
  template <class Field, class Value>
  bool Assign(Field& field, const Value& value) {
    if (field == value) return false;
    field = value;
    Notify();
    return true;
  }
  void Notify() {
    if (changed) changed();
  }

 private:
  std::string name_;
  bool enabled_ = true;
  bool visible_ = true;
  Twips left_ = 0, top_ = 0, width_ = 0, height_ = 0;
  std::string tool_tip_text_;
  std::int32_t whats_this_help_id_ = 0;
  std::string tag_;
};

}  // namespace tidyfold
