#include "desktop/common/page_engine.h"

#include <webkit2/webkit2.h>

namespace tidyfold {

bool Has_Page_Engine() {
  return wxWebView::IsBackendAvailable(wxWebViewBackendDefault);
}

void Keep_No_Pages() {
  webkit_web_context_set_cache_model(webkit_web_context_get_default(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
}

unsigned Status_Of_Answer(const wxWebView& view) {
  WebKitWebResource* const page = webkit_web_view_get_main_resource(WEBKIT_WEB_VIEW(view.GetNativeBackend()));
  WebKitURIResponse* const answer = page == nullptr ? nullptr : webkit_web_resource_get_response(page);
  return answer == nullptr ? 0 : webkit_uri_response_get_status_code(answer);
}

}  // namespace tidyfold
