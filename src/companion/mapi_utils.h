// The companion's one automation object, "TidyDll.TidyMAPIUtils".
#pragma once

#include "stores/automation/com.h"

namespace tidyfold::companion {

// How many objects and locks keep the library loaded.
extern LONG users;

// Offers HrGetOneProp(object, property tag), by name.
com::Ptr<IUnknown> Make_Mapi_Utils();

}  // namespace tidyfold::companion
