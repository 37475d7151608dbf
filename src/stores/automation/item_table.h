// A folder's table over automation objects
// (https://learn.microsoft.com/office/vba/api/outlook.table).
#pragma once

#include <functional>
#include <string>

#include "stores/automation/objects.h"

namespace tidyfold::com {

// Sets the columns that a row takes. `find` gets a single item by its EntryID, for what its row cannot tell.
// Throws Automation_Error (not_supported) when Outlook refuses one of the columns.
Table_Ptr Make_Table(const Session_Ptr& session, Ptr<IDispatch> table,
                     std::function<Item_Ptr(const std::string& entry_id)> find);

}  // namespace tidyfold::com
