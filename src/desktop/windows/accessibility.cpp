#include "desktop/common/accessibility.h"

#include <wx/access.h>

namespace tidyfold {

#if wxUSE_ACCESSIBILITY

namespace {

// Adds a name and a role to what the system tells of a window.
class Named_Window : public wxAccessible {
 public:
  Named_Window(wxWindow* window, Spoken_As role) : wxAccessible(window), role_(role) {}

  wxAccStatus GetName(int child, wxString* name) override {
    if (child != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
    *name = name_;
    return wxACC_OK;
  }
  wxAccStatus GetRole(int child, wxAccRole* role) override {
    if (child != wxACC_SELF || role_ == Spoken_As::Unchanged) return wxACC_NOT_IMPLEMENTED;
    *role = role_ == Spoken_As::List ? wxROLE_SYSTEM_LIST : wxROLE_SYSTEM_STATUSBAR;
    return wxACC_OK;
  }

  bool Set_Name(const wxString& name) {
    if (name == name_) return false;
    name_ = name;
    return true;
  }

 private:
  Spoken_As role_;
  wxString name_;
};

}  // namespace

void Set_Spoken_Name(wxWindow& widget, const wxString& name, Spoken_As role) {
  auto* accessible = dynamic_cast<Named_Window*>(widget.GetAccessible());
  if (accessible == nullptr) {
    accessible = new Named_Window(&widget, role);
    widget.SetAccessible(accessible);  // which takes it over
  }
  if (accessible->Set_Name(name))
    wxAccessible::NotifyEvent(wxACC_EVENT_OBJECT_NAMECHANGE, &widget, wxOBJID_CLIENT, wxACC_SELF);
}

#else

// The toolkit was built without accessible objects.
void Set_Spoken_Name(wxWindow&, const wxString&, Spoken_As) {}

#endif

// Windows knows its dialogs.
void Speak_As_Dialog(wxDialog&) {}

}  // namespace tidyfold
