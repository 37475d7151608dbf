#include "layout/class_elastic.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "base/numbers.h"

namespace tidyfold {

namespace {

// The names belong to several windows. One frame is spelt differently in the two lists and therefore follows
// only one of the two sizes; windows rely on that.
constexpr std::string_view follow_width[] = {
    "txtMessageBox",       "TabStrip1",          "WebBrowser2",           "txtTemplateTextBox",
    "ListAttachments",     "FrameAttachments",   "FrameTemplate",         "FrameWEBrowser",
    "WebBrowser1",         "TabStrip_For_Email", "txtHTMLBody",           "FrameHTMLBody",
    "FrameHTMLTemplate",   "txtHTML_Template",   "FrameTextEmailPreview", "txtEmailPreview",
    "txtText_Email",       "FrameHTMLView",      "FrameTextTemplate",     "Frame2",
    "txtWebBrowseLocation"};
constexpr std::string_view follow_height[] = {
    "ListTemplates",   "FrameTemplate",     "ListAttachments",  "FrameAttachments",   "txtTemplateTextBox",
    "WebBrowser2",     "WebBrowser1",       "TabStrip1",        "TabStrip_For_Email", "txtHTMLBody",
    "FrameHTMLBody",   "FrameHTMLTemplate", "txtHTML_Template", "FrameWebBrowser",    "FrameTextEmailPreview",
    "txtEmailPreview", "FrameTextTemplate", "txtText_Email",    "FrameHTMLView"};
constexpr std::string_view keeps_right_distance = "Toolbar3";

template <std::size_t count>
bool Holds(const std::string_view (&names)[count], std::string_view name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// Skips a position that does not fit into 16 bits.
Twips Recorded(Twips position) {
  try {
    return static_cast<Twips>(Rounded<std::int16_t>(position));
  } catch (const std::overflow_error&) {
    return 0;
  }
}

// A control that refuses its new position keeps the old one; the next control is laid out all the same.
template <class Change>
void Try_To(Change&& change) {
  try {
    change();
  } catch (const std::exception&) {
  }
}

}  // namespace

void class_Elastic::Init(const Form& form, std::span<Control* const> controls) {
  form_height_ = Rounded<std::int16_t>(form.Height());
  form_width_ = Rounded<std::int16_t>(form.Width());
  controls_.clear();
  for (Control* const control : controls) {
    controls_.push_back(
        {control, Recorded(control->Left()), Recorded(control->Height()), Recorded(control->Width())});
  }
  first_resize_ = true;
}

void class_Elastic::FormResize(Form& form) {
  const bool auto_redraw = form.AutoRedraw;
  form.AutoRedraw = true;
  if (first_resize_) {
    first_resize_ = false;
    return;
  }
  const auto wider = static_cast<Twips>(Rounded<std::int32_t>(form.Width()) - form_width_);
  const auto taller = static_cast<Twips>(Rounded<std::int32_t>(form.Height()) - form_height_);
  for (const Designed& designed : controls_) {
    Control& control = *designed.control;
    if (Holds(follow_width, control.Name())) Try_To([&] { control.Set_Width(designed.width + wider); });
    if (Holds(follow_height, control.Name())) Try_To([&] { control.Set_Height(designed.height + taller); });
    if (control.Name() == keeps_right_distance) Try_To([&] { control.Set_Left(designed.left + wider); });
  }
  form.AutoRedraw = auto_redraw;
}

}  // namespace tidyfold
