// For a build without the view of Web pages.
#include "desktop/common/help_browser_frame.h"

namespace tidyfold {

Help_Browser_Frame* Make_Help_Browser_Frame(Help_Browser_Window&) {
  return nullptr;
}

}  // namespace tidyfold
