// Access to the system's Web engine beyond what wxWebView offers.
#pragma once

#include <wx/webview.h>

namespace tidyfold {

// Whether a view would show pages.
bool Has_Page_Engine();

// Switches off the cache of pages, for all views.
void Keep_No_Pages();

// The HTTP status of the page that is shown: a site sends a page of its own where it lacks the one asked for.
// 0 where it is not known, as for a file.
unsigned Status_Of_Answer(const wxWebView& view);

}  // namespace tidyfold
