#include "cache/item_dates.h"

#include <cmath>

namespace tidyfold {

Date Later_Date(Date a, Date b) {
  if (std::floor(a) == no_date) return b;
  if (std::floor(b) == no_date) return a;
  return a <= b ? b : a;
}

namespace {

// Each date that is asked for may cost a call.
template <class Received, class Modified, class Completed, class Due, class End>
Date Day_By_Class(std::int32_t item_class, Received&& received, Modified&& modified, Completed&& completed,
                  Due&& due, End&& end) {
  Date date;
  if (item_class == item_class::mail ||
      (item_class >= item_class::meeting_request && item_class <= item_class::meeting_response_tentative)) {
    date = received();
  } else if (item_class == item_class::appointment || item_class == item_class::journal) {
    date = end();
  } else if (item_class == item_class::task) {
    date = Later_Date(modified(), Later_Date(completed(), due()));
  } else {
    date = modified();
  }
  return std::floor(date);
}

}  // namespace

Date Get_Item_Date(Item& item, std::int32_t item_class) {
  return Day_By_Class(
      item_class, [&] { return item.ReceivedTime(); }, [&] { return item.LastModificationTime(); },
      [&] { return item.DateCompleted(); }, [&] { return item.DueDate(); }, [&] { return item.End(); });
}

Date Get_Row_Date(const Table_Row& row) {
  return Day_By_Class(
      row.Class, [&] { return row.ReceivedTime; }, [&] { return row.LastModificationTime; },
      [&] { return row.DateCompleted; }, [&] { return row.DueDate; }, [&] { return row.End; });
}

}  // namespace tidyfold
