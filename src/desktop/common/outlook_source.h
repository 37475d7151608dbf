// The message store that the window works on when no store file is named.
#pragma once

#include <memory>

#include "outlook/object_model.h"

namespace tidyfold {

// Outlook, on systems that have it; it is attached to, or started, when the window loads. Otherwise null: the
// window then asks for a store file. Throws Automation_Error where the system's automation cannot be used.
std::unique_ptr<Automation> Make_Outlook_Source();

}  // namespace tidyfold
