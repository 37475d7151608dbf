// The filter options: which items they let pass, and what happens when one changes.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_data.h"

namespace tidyfold {

// True when the item is unread; an item that will not say counts as read.
bool Check_Unread(Item& item, Error_Handler& errors);

// Everything that decides which items pass, and nothing that does not.
struct Filter_State {
  bool by_type = false, by_date = false, by_subject = false, unread_too = false, match_case = false,
       match_word = false;
  std::array<bool, 6> types{};
  Date cutoff = 0;
  std::string subject;
  bool operator==(const Filter_State&) const = default;
};

class Item_Filters {
 public:
  Item_Filters(MainWindow& window, FolderData_Array& records, Error_Handler& errors)
      : window_(window), records_(records), errors_(errors) {}

  // Sets the option controls' handlers.
  void Wire();

  // The cached item lies in a marked folder and passes every filter. Never true for an item that was not read
  // as far as its EntryID, or that a run has deleted.
  bool Check_Filtered_Record(int node, int folder, std::int32_t item);
  // Whether an item that was read by itself passes every filter.
  bool Check_Item(std::int32_t item_class, Date date, std::string_view subject, bool unread);
  bool Check_Type(std::int32_t item_class);
  // The cut-off day itself passes.
  bool Check_Date(Date item_date);
  // Blanks at the end never count; without Match Case neither case nor blanks at the beginning do.
  bool Check_Subject(std::string_view subject);

  Filter_State State() const;
  // Brings the rows up to date with a date or text that was entered but not yet taken over.
  void Focus_Lost();

  std::function<void()> Change_Filtered_Rows;
  std::function<void()> Enable_Command_Buttons;

 private:
  void Apply();
  void Filter_Changed();
  void chkSelectDate_Click();
  void chkSelectSubject_Click();
  void chkSelectType_Click();

  MainWindow& window_;
  FolderData_Array& records_;
  Error_Handler& errors_;
  Filter_State applied_;
};

}  // namespace tidyfold
