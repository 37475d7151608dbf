// The filter options' handlers.
#pragma once

#include "cache/window_updates.h"
#include "controls/main_window.h"
#include "errors/procedure.h"
#include "plan/item_filter.h"

namespace tidyfold {

// True when the item is unread; an item that will not say counts as read.
bool Check_Unread(Item& item, Error_Handler& errors);

// True when the item is mail that is marked for follow-up; only mail is asked. Mail that will not say counts
// as flagged, so that it stays.
bool Check_Flagged(Item& item, std::int32_t item_class, Error_Handler& errors);

// The filter that the option controls describe at this moment.
Item_Filter Read_Filter(const MainWindow& window);

// A text or date that is being entered takes effect on Enter or when its box loses the focus; until then the
// filter before it stays in force.
class Item_Filters {
 public:
  Item_Filters(MainWindow& window, Filter_In_Force& in_force, Item_View& view, Error_Handler& errors)
      : window_(window), in_force_(in_force), view_(view), errors_(errors) {}

  // Sets the option controls' handlers.
  void Wire();
  // Puts in force what was entered but not yet taken over.
  void Focus_Lost();

 private:
  void Filter_Changed();
  void chkSelectDate_Click();
  void chkSelectSubject_Click();
  void chkSelectType_Click();

  MainWindow& window_;
  Filter_In_Force& in_force_;
  Item_View& view_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
