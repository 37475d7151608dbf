// Differences in size and look between the systems.
#pragma once

#include <wx/button.h>
#include <wx/frame.h>

namespace tidyfold {

// The resolution that the sizes of the models are converted with.
double Dots_Per_Inch(const wxWindow& window);

// The space between two check boxes, in unscaled pixels.
int Check_Box_Gap();

// Whether a button looks like one that destroys something.
void Look_Dangerous(wxButton& button, bool dangerous);

// Shows a tooltip beside a part of the window, so that it does not cover what is pointed at. An empty text:
// none.
void Show_Tip_Beside(wxWindow& window, const wxRect& part, const wxString& text);

// Style flags of a tool bar: whether its tools show pictures or words.
long Tool_Bar_Style();

// Whether a window that was shown is on the screen yet; the desktop may let it wait.
bool Is_On_Screen(const wxWindow& window);

// Whether the window is the one that the person works in.
bool Is_In_Front(wxFrame& frame);
// The same of any window of the program, its boxes included.
bool Is_Program_In_Front();

}  // namespace tidyfold
