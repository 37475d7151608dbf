#include "desktop/common/accessibility.h"

#include <gtk/gtk.h>

namespace tidyfold {

void Set_Spoken_Name(wxWindow& widget, const wxString& name, Spoken_As role) {
  AtkObject* const accessible = gtk_widget_get_accessible(GTK_WIDGET(widget.GetHandle()));
  if (role == Spoken_As::List) atk_object_set_role(accessible, ATK_ROLE_TABLE);
  if (role == Spoken_As::Status) atk_object_set_role(accessible, ATK_ROLE_STATUSBAR);
  const wxScopedCharBuffer text = name.utf8_str();
  const char* const before = atk_object_get_name(accessible);
  if (before == nullptr || name != wxString::FromUTF8(before)) atk_object_set_name(accessible, text.data());
}

// The toolkit makes its own dialogs of plain windows of GTK's.
void Speak_As_Dialog(wxDialog& dialog) {
  atk_object_set_role(gtk_widget_get_accessible(GTK_WIDGET(dialog.GetHandle())), ATK_ROLE_DIALOG);
}

}  // namespace tidyfold
