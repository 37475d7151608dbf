#include "desktop/common/outlook_source.h"

namespace tidyfold {

std::unique_ptr<Automation> Make_Outlook_Source() {
  return nullptr;
}

}  // namespace tidyfold
