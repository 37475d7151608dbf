#include "desktop/common/page_engine.h"

#include <wx/dynlib.h>

namespace tidyfold {

// wxWidgets makes a view without the engine too, but that never shows a page.
bool Has_Page_Engine() {
  const wxDynamicLibrary engine("mshtml.dll", wxDL_DEFAULT | wxDL_QUIET);
  return engine.IsLoaded() && wxWebView::IsBackendAvailable(wxWebViewBackendDefault);
}

void Keep_No_Pages() {}

unsigned Status_Of_Answer(const wxWebView&) {
  return 0;
}

}  // namespace tidyfold
