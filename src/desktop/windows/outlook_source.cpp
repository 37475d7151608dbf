#include "desktop/common/outlook_source.h"
#include "stores/automation/outlook_automation.h"

namespace tidyfold {

std::unique_ptr<Automation> Make_Outlook_Source() {
  return std::make_unique<Outlook_Automation>();
}

}  // namespace tidyfold
