// What a run must leave behind, foreseen from marks, options and rows alone, without knowing how the program
// works.
#pragma once

#include "app/window_fixture.h"

namespace tidyfold {

struct Run_Fixture : Window_Fixture {
  using Window_Fixture::Window_Fixture;
  std::map<std::string, New_Item> items;  // by "store id entry id"
  Contents before, expected;
  int to_take = 0;  // items, or folders where those are deleted

  // For mail and notes, and for the text "re" with subjects that begin so at most.
  bool Passes(const New_Item& item) const {
    const Date date = item.item_class == item_class::mail ? item.received : item.last_modified;
    const std::string& subject = item.subject;
    const bool case_matters = window.chkMatchCase.Checked(), whole = window.chkMatchWord.Checked();
    return (!window.chkSelectDate.Checked() || date < window.dtpCutoffDate.Value() + 1) &&
           (!item.unread || window.chkSelectUnread.Checked()) &&
           (!window.chkSelectType.Checked() || item.item_class == item_class::mail) &&
           (!window.chkSelectSubject.Checked() || subject == "re" || (subject == " re" && !case_matters) ||
            (subject == "Re: x" && !case_matters && !whole));
  }
  void Foresee() {
    expected = before = Everything();
    to_take = 0;
    const bool folders = window.chkDeleteFolders.Checked(), by_row = window.chkSelectByRow.Checked();
    const std::set<std::string> defaults = {"Calendar", "Contacts", "Deleted Items", "Drafts",     "Inbox",
                                            "Journal",  "Notes",    "Outbox",        "Sent Items", "Tasks"};
    std::map<std::string, int> nodes;
    std::map<int, bool> stays;
    std::set<std::string> picked;
    for (int node = tree.Upper_Bound(); node >= 1; --node) {  // what lies below comes first
      const FolderData& record = Record(node);
      if (record.Folder != nullptr) nodes[record.Folder->StoreID() + " " + Path(node)] = node;
      stays[node] |=
          !folders || !tree.Checked(node) || Path(node).empty() || defaults.contains(record.FolderName);
      if (stays[node]) stays[tree.Parent(node)] = true;
    }
    for (int row = 1; row < grid.Rows(); ++row) {
      const GridRow& at = grid.Row_At(row);
      const FolderData& record = Record(at.row_data);
      const std::string id = record.Folder->StoreID() + " " + record.Cached(at.item).EntryID;
      if (at.marked) picked.insert(id);
      EXPECT_TRUE(by_row || at.marked == (tree.Checked(at.row_data) && Passes(items.at(id)))) << id;
    }
    for (const auto& [id, path] : before) {
      const int node = nodes.at(id.substr(0, id.find(' ') + 1) + path);
      const bool taken =
          tree.Checked(node) && (window.chkTurbo.Checked() || (items.contains(id) && Passes(items.at(id))));
      if (!folders && items.contains(id) ? !(by_row ? picked.contains(id) : taken) : stays[node]) continue;
      if (items.contains(id) != folders) ++to_take;
      if (!window.chkPermanentDelete.Checked()) expected[id] = "/Deleted Items";
      if (window.chkPermanentDelete.Checked()) expected.erase(id);
    }
  }
};

}  // namespace tidyfold
