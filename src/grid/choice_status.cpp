#include "grid/choice_status.h"

#include "base/size_text.h"
#include "base/text.h"

namespace tidyfold {

namespace {

// Why the items of the folders in view have no row.
struct Reasons {
  std::int64_t read = 0;  // items
  int folders = 0, unread_folders = 0;
  std::int64_t not_ticked = 0, date = 0, subject = 0, type = 0, unread = 0, flagged = 0, hidden = 0;

  void Add(const ItemData& item, bool ticked, const Item_Filter& filter, bool shows_selected) {
    ++read;
    const bool passes = filter.Passes(item);
    if (passes && ticked) {
      hidden += shows_selected ? 0 : 1;
      return;
    }
    if (shows_selected && !ticked) {
      ++not_ticked;
      return;
    }
    if (!filter.Check_Date(item.ItemDate)) ++date;
    if (!filter.Check_Subject(item.Subject)) ++subject;
    if (!filter.Check_Type(item.ItemClass)) ++type;
    if (item.Unread && !filter.unread_too) ++unread;
    if (item.Flagged && !filter.flagged_too) ++flagged;
  }

  std::string Text() const {
    std::string text;
    const auto line = [&](std::int64_t count, const char* one, const char* many) {
      if (count > 0) text += "\r\n" + Format_Count(count) + (count == 1 ? one : many);
    };
    line(not_ticked, " lies in a folder that is not ticked", " lie in a folder that is not ticked");
    line(date, " is later than the date", " are later than the date");
    line(subject, " has another subject", " have another subject");
    line(type, " is of another type", " are of another type");
    line(unread, " is unread", " are unread");
    line(flagged, " is flagged", " are flagged");
    line(hidden, " is selected, and Show Selected Items is off",
         " are selected, and Show Selected Items is off");
    return text;
  }
};

}  // namespace

void Choice_Status::Display_Selected_Items_Total() {
  errors_.Run("Display_Selected_Items_Total", [&] {
    const Clean_Plan plan = planner_.Numbers();
    std::string text = "Total Selected:  " + Format_Count(plan.total.items);
    if (plan.total.bytes > 0) text += " (" + Format_Size(plan.total.bytes) + ")";
    window_.sbStatusBar.Set_Panel_Text(3, text);
  });
}

void Choice_Status::Display_Empty_Text(int current) {
  errors_.Run("Display_Empty_Text", [&] { window_.grdItems.Set_Empty_Text(Empty_Text(current)); });
}

std::string Choice_Status::Empty_Text(int current) const {
  if (window_.grdItems.Rows() > 1)
    return "No row holds what is written in the search box. The search hides rows and changes nothing else.";
  const bool shows_selected = window_.chkShowSelectedItems.Checked();
  if (!shows_selected && !window_.chkShowUnselectedItems.Checked())
    return "Nothing is shown: Show Selected Items and Show Unselected Items are both off.";
  const TreeView& tree = window_.trvFolders;
  const bool all_folders = window_.chkShowAllFolders.Checked();
  const Item_Filter filter = planner_.Filter();
  Reasons reasons;
  for (int folder = 1; folder <= tree.Upper_Bound(); ++folder) {
    if (!tree.Exists(folder) || !(all_folders ? tree.Checked(folder) : folder == current)) continue;
    const FolderData& record = records_[folder];
    if (record.Folder == nullptr) continue;
    ++reasons.folders;
    if (!record.Loaded) ++reasons.unread_folders;
    for (std::int32_t item = 1; item <= record.CachedCount; ++item)
      reasons.Add(record.Cached(item), tree.Checked(folder), filter, shows_selected);
  }
  if (reasons.folders == 0)
    return all_folders ? "Tick a folder in the tree to choose its items."
                       : "Click a folder in the tree to see its items.";
  const bool one = reasons.folders == 1;
  const std::string which =
      one ? all_folders ? "The ticked folder" : "The current folder" : "The ticked folders";
  const std::string not_read = reasons.unread_folders == 0 ? ""
                               : one                       ? which + " is not read yet."
                               : reasons.unread_folders == reasons.folders
                                   ? which + " are not read yet."
                                   : Format_Count(reasons.unread_folders) + " of the ticked folders " +
                                         (reasons.unread_folders == 1 ? "is" : "are") + " not read yet.";
  if (reasons.read == 0)
    return not_read.empty() ? which + (one ? " holds" : " hold") + " no items." : not_read;
  return "No item to show. Of " + Format_Count(reasons.read) + (reasons.read == 1 ? " item" : " items") +
         (all_folders ? one ? " in the ticked folder:" : " in the ticked folders:"
                      : " in the current folder:") +
         reasons.Text() + (not_read.empty() ? "" : "\r\n" + not_read);
}

}  // namespace tidyfold
