#include "desktop/common/show_in_front.h"

#include <wx/toplevel.h>

#include <utility>

namespace tidyfold {

void Show_In_Front(wxTopLevelWindow& window) {
  if (window.IsShown()) {
    window.Restore();
    window.Raise();
    return;
  }
  window.Bind(wxEVT_SHOW, [&window, raised = false](wxShowEvent& event) mutable {
    event.Skip();
    if (!event.IsShown() || std::exchange(raised, true)) return;
    // Later, for the click that asked for it still gives the focus to what was clicked.
    window.CallAfter([&window] { window.Raise(); });
  });
  window.Show();
}

}  // namespace tidyfold
