// The cell of the folder tree: a check box and a text.
#pragma once

#include <wx/dataview.h>

#include <functional>

namespace tidyfold {

// Told of the item whose check box it is about.
using Tick_Handler = std::function<void(const wxDataViewItem& item)>;

// The values are wxDataViewCheckIconText. GTK's renderer uses the native check box and text cells, which the
// theme paints and screen readers find; the one for Windows is wxWidgets' own.
//
// `clicked` is told of a click, within its events; `asked` of what a screen reader or the like asked for,
// which nothing else tells of.
wxDataViewRenderer* New_Check_Text_Renderer(Tick_Handler clicked, Tick_Handler asked);

}  // namespace tidyfold
