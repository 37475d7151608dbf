// The search box over the list. It narrows which rows are shown, and nothing else: what a run takes is the
// same with and without it.
#pragma once

#include <string>
#include <vector>

#include "grid/grid_columns.h"

namespace tidyfold {

class Item_Search {
 public:
  Item_Search(MainWindow& window, const FolderData_Array& records, Error_Handler& errors)
      : window_(window), records_(records), errors_(errors) {}

  // Sets the handler of the box and of the rows.
  void Wire();

 private:
  void txtFind_Change();
  // Every word stands somewhere in the row's folder, type, sender or text, subject or date; capitals and
  // small letters are the same.
  bool Matches(const GridRow& row) const;
  // How many rows are shown, and that this changes nothing else.
  void Say_How_Many();

  MainWindow& window_;
  const FolderData_Array& records_;
  Error_Handler& errors_;
  std::vector<std::string> words_;  // in upper case
};

}  // namespace tidyfold
