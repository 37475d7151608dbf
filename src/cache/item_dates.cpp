#include "cache/item_dates.h"

#include <cmath>

namespace tidyfold {

Date Later_Date(Date a, Date b) {
  if (std::floor(a) == no_date) return b;
  if (std::floor(b) == no_date) return a;
  return a <= b ? b : a;
}

Date Get_Item_Date(Item& item, std::int32_t item_class) {
  Date date;
  if (item_class == item_class::mail ||
      (item_class >= item_class::meeting_request && item_class <= item_class::meeting_response_tentative)) {
    date = item.ReceivedTime();
  } else if (item_class == item_class::appointment || item_class == item_class::journal) {
    date = item.End();
  } else if (item_class == item_class::task) {
    date = Later_Date(item.LastModificationTime(), Later_Date(item.DateCompleted(), item.DueDate()));
  } else {
    date = item.LastModificationTime();
  }
  return std::floor(date);
}

}  // namespace tidyfold
