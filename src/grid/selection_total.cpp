#include "grid/selection_total.h"

#include <cstdio>
#include <utility>

namespace tidyfold {

std::string Format_Size(std::int64_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  double size = static_cast<double>(bytes) / 1024;
  const char* unit = "KB";
  for (const char* larger : {"MB", "GB", "TB"}) {
    if (size < 1000) break;
    size /= 1024;
    unit = larger;
  }
  char text[40];
  std::snprintf(text, sizeof text, "%.1f %s", size, unit);
  return text;
}

void Selection_Total::Count() {
  errors_.Run("Selection_Total", [&] {
    items_ = bytes_ = 0;
    if (window_.chkSelectByRow.Checked()) {
      Count_Marked_Rows();
    } else {
      Count_Marked_Folders();
    }
  });
}

void Selection_Total::Count_Marked_Rows() {
  const FlexGrid& grid = window_.grdItems;
  items_ = grid.Marked_Rows();
  if (items_ == 0) return;
  // Asked for with every batch of items that loads; the rows stay mostly as they are.
  if (std::exchange(row_version_, grid.Row_Version()) == grid.Row_Version()) {
    bytes_ = marked_bytes_;
    return;
  }
  for (int row = 1; row < grid.Rows(); ++row) {
    const GridRow& at = grid.Row_At(row);
    if (at.marked && at.item >= 1) bytes_ += records_[at.row_data].Cached(at.item).Size;
  }
  marked_bytes_ = bytes_;
}

void Selection_Total::Follow_Filters() {
  // Turbo and Delete Folders have opened every filter, so the same count serves for them.
  Filter_State state = filters_.State();
  if (state == last_state_) return;
  last_state_ = std::move(state);
  ++filter_version_;
}

void Selection_Total::Take_Over(int folder, Passing_Items passing) {
  Follow_Filters();
  passing.filter_version = filter_version_;
  records_[folder].Passing = passing;
}

void Selection_Total::Count_Marked_Folders() {
  Follow_Filters();
  for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
    if (!tree_.Exists(node) || !tree_.Checked(node)) continue;
    const int index = folder_tree_.Get_Node_Index(node);
    FolderData& record = records_[index];
    Passing_Items& passing = record.Passing;
    if (passing.filter_version != filter_version_ || passing.looked_at > record.CachedCount)
      passing = {filter_version_, 0, 0, 0};
    for (; passing.looked_at < record.CachedCount; ++passing.looked_at) {
      const std::int32_t item = passing.looked_at + 1;
      if (!filters_.Check_Filtered_Record(node, index, item)) continue;
      ++passing.items;
      passing.bytes += record.Cached(item).Size;
    }
    items_ += passing.items;
    bytes_ += passing.bytes;
  }
}

std::string Selection_Total::Empty_Text() {
  if (window_.grdItems.Rows() > 1) return {};
  if (!window_.chkShowSelectedItems.Checked() && !window_.chkShowUnselectedItems.Checked())
    return "Nothing is shown: Show Selected Items and Show Unselected Items are both off.";
  std::int64_t cached = 0, date = 0, subject = 0, type = 0, unread = 0;
  bool any_marked = false;
  for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
    if (!tree_.Exists(node) || !tree_.Checked(node)) continue;
    any_marked = true;
    const FolderData& record = records_[folder_tree_.Get_Node_Index(node)];
    for (std::int32_t item = 1; item <= record.CachedCount; ++item) {
      const ItemData& data = record.Cached(item);
      ++cached;
      date += filters_.Check_Date(data.ItemDate) ? 0 : 1;
      subject += filters_.Check_Subject(data.Subject) ? 0 : 1;
      type += filters_.Check_Type(data.ItemClass) ? 0 : 1;
      unread += data.Unread && !window_.chkSelectUnread.Checked() ? 1 : 0;
    }
  }
  if (!any_marked) {
    const int node = tree_.Selected_Item();
    const int current = node == 0 ? 0 : folder_tree_.Get_Node_Index(node);
    const bool empty = current != 0 && records_[current].Loaded && records_[current].CachedCount == 0;
    return std::string(empty ? "The current folder holds no items.\r\n" : "") +
           "Tick a folder in the tree to choose its items.";
  }
  if (cached == 0) return "The ticked folders hold no items.";
  std::string text = "No item to show. Of " + std::to_string(cached) + (cached == 1 ? " item" : " items") +
                     " in the ticked folders:";
  const auto line = [&](std::int64_t count, const char* one, const char* many) {
    if (count > 0) text += "\r\n" + std::to_string(count) + (count == 1 ? one : many);
  };
  line(date, " is later than the date", " are later than the date");
  line(subject, " has another subject", " have another subject");
  line(type, " is of another type", " are of another type");
  line(unread, " is unread", " are unread");
  if (date + subject + type + unread == 0) text += "\r\nevery one is hidden by the show options";
  return text;
}

}  // namespace tidyfold
