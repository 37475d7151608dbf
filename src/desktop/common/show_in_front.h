// Shows a window beside the main one so that it gets the keyboard.
#pragma once

class wxTopLevelWindow;

namespace tidyfold {

// A window on the screen is raised, one that is not yet is raised as soon as it is there: GTK shows a window
// some moments later than asked, and window managers ignore what is raised before.
void Show_In_Front(wxTopLevelWindow& window);

}  // namespace tidyfold
