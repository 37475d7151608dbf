#include "cli/chosen_stores.h"

namespace tidyfold::cli {

std::unique_ptr<Automation> Make_Outlook() {
  return nullptr;
}

}  // namespace tidyfold::cli
