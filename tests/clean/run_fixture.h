// What a run must leave behind, foreseen from marks, options and rows alone, without knowing how the program
// works.
#pragma once

#include <algorithm>

#include "app/window_fixture.h"

namespace tidyfold {

struct Run_Fixture : Window_Fixture {
  using Window_Fixture::Window_Fixture;
  std::map<std::string, New_Item> items;  // by "store id entry id"
  Contents before, expected;
  int to_take = 0;  // items, or folders where those are deleted

  void Put(const std::string& path, std::size_t store, const New_Item& item) {
    Memory_Store& to = outlook.Store(store);
    items[to.StoreID() + " " + to.Add_Item(*Folder(path, store), item)] = item;
  }

  // The filters for subjects that begin with "re" at most.
  bool Passes(const New_Item& item) const {
    const auto real = [](Date date) { return date == no_date ? 0 : date; };
    const Date latest = std::max({real(item.last_modified), real(item.completed), real(item.due)});
    const Date date = item.item_class == 48                            ? (latest == 0 ? no_date : latest)
                      : item.item_class == 43 || item.item_class == 53 ? item.received
                      : item.item_class == 26                          ? item.end
                                                                       : item.last_modified;
    if (window.chkSelectDate.Checked() && date >= window.dtpCutoffDate.Value() + 1) return false;
    if (item.unread && !window.chkSelectUnread.Checked()) return false;
    if (window.chkSelectType.Checked() && item.item_class != 43) return false;
    const std::string& subject = item.subject;
    if (!window.chkSelectSubject.Checked() || subject == "re") return true;
    if (window.chkMatchCase.Checked()) return false;
    return subject == " re" || subject == "RE " || (subject == "Re: x" && !window.chkMatchWord.Checked());
  }

  void Foresee() {
    expected = before = Everything();
    std::map<std::string, int> nodes;
    std::set<std::string> picked;
    std::vector<bool> goes(static_cast<std::size_t>(tree.Upper_Bound()) + 1,
                           window.chkDeleteFolders.Checked());
    const std::set<std::string> defaults = {"Calendar", "Contacts", "Deleted Items", "Drafts",     "Inbox",
                                            "Journal",  "Notes",    "Outbox",        "Sent Items", "Tasks"};
    for (int node = tree.Upper_Bound(); node >= 1; --node) {
      const FolderData& record = Record(node);
      if (record.Folder != nullptr) nodes[record.Folder->StoreID() + " " + Path(node)] = node;
      const auto at = static_cast<std::size_t>(node);
      if (!tree.Checked(node) || Path(node).empty() || defaults.contains(record.FolderName)) goes[at] = false;
      if (!goes[at]) goes[static_cast<std::size_t>(tree.Parent(node))] = false;
    }
    for (int row = 1; row < window.grdItems.Rows(); ++row) {
      const FolderData& record = Record(Row(row).row_data);
      const std::string id = record.Folder->StoreID() + " " + record.Cached(Row(row).item).EntryID;
      if (Row(row).marked) picked.insert(id);
      if (window.chkSelectByRow.Checked()) continue;
      EXPECT_EQ(Row(row).marked, tree.Checked(Row(row).row_data) && Passes(items.at(id))) << id;
    }
    to_take = 0;
    for (const auto& [id, path] : before) {
      const int node = nodes.at(id.substr(0, id.find(' ') + 1) + path);
      const bool folder_goes = goes[static_cast<std::size_t>(node)];
      bool goes_itself = folder_goes;
      if (items.contains(id) && !window.chkDeleteFolders.Checked()) {
        goes_itself = window.chkSelectByRow.Checked()
                          ? picked.contains(id)
                          : tree.Checked(node) && (window.chkTurbo.Checked() || Passes(items.at(id)));
      }
      if (!goes_itself) continue;
      if (items.contains(id) != window.chkDeleteFolders.Checked()) ++to_take;
      window.chkPermanentDelete.Checked() ? void(expected.erase(id)) : void(expected[id] = "/Deleted Items");
    }
  }
};

}  // namespace tidyfold
