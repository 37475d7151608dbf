#include "desktop/common/control_finder.h"

#include <wx/control.h>

#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

const wxWindow* Deepest_At(const wxWindow& window, const wxPoint& place) {
  for (const wxWindow* const child : window.GetChildren()) {
    if (child->IsTopLevel() || !child->IsShown() || !child->GetScreenRect().Contains(place)) continue;
    return Deepest_At(*child, place);
  }
  return &window;
}

}  // namespace

const Control* Control_Finder::At(const wxPoint& place) const {
  return frame_.GetScreenRect().Contains(place) ? Of_Widget(Deepest_At(frame_, place)) : nullptr;
}

const Control* Control_Finder::Of_Widget(const wxWindow* widget) const {
  for (; widget != nullptr && widget != &frame_; widget = widget->GetParent()) {
    const std::string name = From_Wx(widget->GetName());
    for (const TypeBox& type : window_.chkType)
      if (name == type.box.Name() + "(" + std::to_string(type.index) + ")") return &type.box;
    for (const Control* const control : window_.controls)
      if (name == control->Name()) return control;
    if (name == window_.sbStatusBar.Name()) return &window_.sbStatusBar;
  }
  return &window_.frmRemoveItems;
}

const Control* Control_Finder::Of_Menu_Entry(const wxString& label) const {
  for (const Control* const control : window_.controls) {
    const auto* const entry = dynamic_cast<const Captioned*>(control);
    if (entry != nullptr && wxControl::RemoveMnemonics(To_Wx(entry->Caption())) == label) return entry;
  }
  return &window_.frmRemoveItems;
}

}  // namespace tidyfold
