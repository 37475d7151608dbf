// The message store that the window works on when no store file is named.
#pragma once

#include <memory>

#include "outlook/object_model.h"

namespace tidyfold {

// Outlook, on systems that have it; loading the window attaches to it or starts it. Null otherwise: the
// window then asks for a store file. Throws Automation_Error if the system's automation is not available.
std::unique_ptr<Automation> Make_Outlook_Source();

}  // namespace tidyfold
