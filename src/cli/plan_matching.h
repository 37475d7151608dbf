// Finds again, in the stores as they are now, what a saved plan names.
#pragma once

#include "cli/plan_file.h"

namespace tidyfold::cli {

// Throws Failure if a store of the plan is not open.
void Check_Stores(const Filed_Plan& filed, const Session& session);

// The plan that takes those of the items that are still what was planned, where it was planned; the others
// are among those that are kept. All items must have been read. Throws Failure if the plan names a folder or
// an item twice.
Clean_Plan Match_Plan(const Filed_Plan& filed, Session& session);

}  // namespace tidyfold::cli
