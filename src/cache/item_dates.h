// Which of an item's dates counts as its date.
#pragma once

#include <cstdint>

#include "outlook/object_model.h"

namespace tidyfold {

// Whole days. Mail and meeting messages go by when they were received, appointments and journal entries by
// their end, tasks by the latest of modification, completion and due date, everything else by modification.
// Throws Automation_Error when the item cannot be read.
Date Get_Item_Date(Item& item, std::int32_t item_class);
Date Get_Row_Date(const Table_Row& row);

// The later of two dates, where no_date stands for none; no_date only when both are.
Date Later_Date(Date a, Date b);

}  // namespace tidyfold
