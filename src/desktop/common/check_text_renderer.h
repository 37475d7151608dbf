// The cell of the folder tree: a check box and a text.
#pragma once

#include <wx/dataview.h>

#include <functional>

namespace tidyfold {

// Told when the user clicks an item's check box.
using Tick_Handler = std::function<void(const wxDataViewItem& item)>;

// The values are wxDataViewCheckIconText. On GTK the two parts are the toolkit's own cells, so that the theme
// paints them and screen readers find them; elsewhere they are wxWidgets' own.
wxDataViewRenderer* New_Check_Text_Renderer(Tick_Handler ticked);

}  // namespace tidyfold
