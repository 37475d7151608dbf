// What a run would take as things stand: how many items, how large, and what keeps the others out.
#pragma once

#include <cstdint>
#include <string>

#include "cache/item_filters.h"
#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/folder_tree.h"

namespace tidyfold {

class Selection_Total {
 public:
  Selection_Total(MainWindow& window, FolderData_Array& records, Folder_Tree& folder_tree,
                  Item_Filters& filters, Error_Handler& errors)
      : window_(window),
        tree_(window.trvFolders),
        records_(records),
        folder_tree_(folder_tree),
        filters_(filters),
        errors_(errors) {}

  // What others have found while they asked the filters as they are about a folder anyway; the version is set
  // here.
  void Take_Over(int folder, Passing_Items passing);
  // Brings the numbers up to date; looks only at what has been read or has changed since.
  void Count();
  std::int64_t Items() const { return items_; }
  std::int64_t Bytes() const { return bytes_; }

  // What to tell a person whose grid is empty: what to tick, or which filter keeps how many items out.
  std::string Empty_Text();

 private:
  void Follow_Filters();
  void Count_Marked_Folders();
  void Count_Marked_Rows();

  MainWindow& window_;
  TreeView& tree_;
  FolderData_Array& records_;
  Folder_Tree& folder_tree_;
  Item_Filters& filters_;
  Error_Handler& errors_;
  std::int64_t items_ = 0, bytes_ = 0;
  std::uint64_t row_version_ = 0;  // of the grid when the sizes of its marked rows were added up
  std::int64_t marked_bytes_ = 0;
  std::uint32_t filter_version_ = 1;
  Filter_State last_state_;
};

// "12 bytes", "3.4 KB", "1.2 GB": 1024 to the unit, one decimal.
std::string Format_Size(std::int64_t bytes);

}  // namespace tidyfold
