// The cell of the folder tree: a check box and a text.
#pragma once

#include <wx/dataview.h>

#include <functional>

namespace tidyfold {

// Told when the user clicks an item's check box.
using Tick_Handler = std::function<void(const wxDataViewItem& item)>;

// The values are wxDataViewCheckIconText. GTK's renderer uses the native check box and text cells, which the
// theme paints and screen readers find; the one for Windows is wxWidgets' own.
wxDataViewRenderer* New_Check_Text_Renderer(Tick_Handler ticked);

}  // namespace tidyfold
