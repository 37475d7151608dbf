#include "cli/chosen_stores.h"
#include "stores/automation/outlook_automation.h"

namespace tidyfold::cli {

std::unique_ptr<Automation> Make_Outlook() {
  return std::make_unique<Outlook_Automation>();
}

}  // namespace tidyfold::cli
