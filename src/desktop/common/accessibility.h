// What a screen reader says of a widget.
#pragma once

#include <wx/dialog.h>
#include <wx/window.h>

namespace tidyfold {

enum class Spoken_As { Unchanged, List, Status };

// The widget's name, and what it is said to be. A new name of the widget that has the keyboard is read out.
void Set_Spoken_Name(wxWindow& widget, const wxString& name, Spoken_As role = Spoken_As::Unchanged);

// A dialog is said to be one, and not a window like any other.
void Speak_As_Dialog(wxDialog& dialog);

}  // namespace tidyfold
