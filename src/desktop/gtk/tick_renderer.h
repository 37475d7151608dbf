// The tick in front of a tree row's text.
#pragma once

#include <gtk/gtk.h>

namespace tidyfold {

// A toggle whose accessible bears the row's text and ticks by its own action: that of GTK's own does nothing.
// The action emits "asked" with the row's path, once what asked for it has its answer.
GtkCellRenderer* New_Tick_Renderer();

}  // namespace tidyfold
