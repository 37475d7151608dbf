// The companion's one automation object, "TidyDll.TidyMAPIUtils".
#pragma once

#include "stores/automation/com.h"

namespace tidyfold::companion {

// The number of objects and locks that keep the library loaded.
extern LONG users;

// Has one method, HrGetOneProp(object, property tag).
com::Ptr<IUnknown> Make_Mapi_Utils();

}  // namespace tidyfold::companion
