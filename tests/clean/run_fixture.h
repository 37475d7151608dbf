// What a run must leave behind, foreseen from marks, options and rows alone, without knowing how the program
// works.
#pragma once

#include "app/window_fixture.h"

namespace tidyfold {

struct Run_Fixture : Window_Fixture {
  using Window_Fixture::Window_Fixture;
  std::map<std::string, New_Item> items;  // by "store id entry id"
  Contents before, expected;
  int to_take = 0;                // items, or folders where those are deleted
  std::set<int> protected_nodes;  // by their own mark

  bool Locked(int node) const {
    return node != 0 && (protected_nodes.contains(node) || Locked(tree.Parent(node)));
  }

  // For mail and notes, and for the text "re" with subjects that begin so at most.
  bool Passes(const New_Item& item) const {
    const Date date = item.item_class == item_class::mail ? item.received : item.last_modified;
    const std::string& subject = item.subject;
    const bool case_matters = window.chkMatchCase.Checked(), whole = window.chkMatchWord.Checked();
    return (!window.chkSelectDate.Checked() || date < window.dtpCutoffDate.Value() + 1) &&
           (!item.unread || window.chkSelectUnread.Checked()) &&
           (!item.flagged || item.item_class != item_class::mail || window.chkSelectFlagged.Checked()) &&
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
      stays[node] |= Locked(node);
      EXPECT_FALSE(tree.Checked(node) && Locked(node)) << tree.Text(node);
      if (stays[node]) stays[tree.Parent(node)] = true;
    }
    for (int row = 1; row < grid.Rows(); ++row) {
      const GridRow& at = grid.Row_At(row);
      const FolderData& record = Record(at.row_data);
      const std::string id = record.Folder->StoreID() + " " + record.Cached(at.item).EntryID;
      if (at.marked && !Locked(at.row_data)) picked.insert(id);
      EXPECT_TRUE(by_row || at.marked == (tree.Checked(at.row_data) && Passes(items.at(id)))) << id;
    }
    for (const auto& [id, path] : before) {
      const int node = nodes.at(id.substr(0, id.find(' ') + 1) + path);
      const bool taken = tree.Checked(node) && !Locked(node) &&
                         (window.chkTurbo.Checked() || (items.contains(id) && Passes(items.at(id))));
      if (!folders && items.contains(id) ? !(by_row ? picked.contains(id) : taken) : stays[node]) continue;
      if (items.contains(id) != folders) ++to_take;
      if (!window.chkPermanentDelete.Checked()) expected[id] = "/Deleted Items";
      if (window.chkPermanentDelete.Checked()) expected.erase(id);
    }
  }
};

inline const char* const behaviours[] = {"new ids", "local names", "no Deleted Items",
                                         "moves what is removed", "two texts"};

// One run of each kind over a small store.
struct Kind_Of_Run {
  std::string name, before, after;  // steps before and after the folders are ticked
  bool operator==(const char* other) const { return name == other; }
};

inline const Kind_Of_Run ways[] = {{"cached", "", ""},
                                   {"permanent", "set PermanentDelete", ""},
                                   {"confirmed", "set ConfirmFolders ConfirmItems", ""},
                                   {"live", "", ""},  // Clean is pressed while the first folder is being read
                                   {"turbo", "set Turbo", ""},
                                   {"rows", "set ShowAllFolders", "set SelectByRow"},
                                   {"folders", "set DeleteFolders ConfirmFolders", ""}};

struct Kind_Run : Run_Fixture {
  const Kind_Of_Run way;
  std::function<void()> before_run = [] {};  // the last moment before Clean is pressed

  explicit Kind_Run(const Kind_Of_Run& the_way, int copies = 1, Instead instead_of_memory = {})
      : Run_Fixture(instead_of_memory), way(the_way) {
    New_Item item;
    for (const char* path : {"Deleted Items", "Inbox", "Old", "Old/Deep", "Projects"})
      for (int number = 1; number <= 4 * copies; ++number) {
        item.unread = number % 4 == 3;
        items[Add(path, item)] = item;
      }
    expected = before = Everything();
    box.Answer_Anything();
  }
  void Run() {
    const auto clean = [this] {
      if (window.frmRemoveItems.Loaded())
        Do(way.before + "; tick Inbox; tick Old/Deep; tick Old; " + way.after);
      if (!window.frmRemoveItems.Loaded()) return;
      Foresee();
      before_run();
      window.cmdRun.Click();
    };
    if (way == "live")
      events.When([this] { return window.sbStatusBar.Panel_Text(1).starts_with("Loading"); }, clean);
    app.Form_Load();
    if (!(way == "live")) clean();
    events.Forget_Waiting();
  }
  // For stores that give items other identities, or folders other names: how many items lie in each folder.
  static std::map<std::string, int> Numbers(const Contents& contents) {
    std::map<std::string, int> numbers;
    for (const auto& [id, path] : contents) {
      if (id.ends_with(" " + path)) continue;
      ++numbers[path == "/Gelöschte Elemente" ? "/Deleted Items" : path];
    }
    return numbers;
  }
  // After a run over a store that behaves in one of the ways of Memory_Store::Behave.
  void Expect_As_Foreseen_In(const std::string& behaviour) {
    const bool for_good = way == "permanent" || way == "turbo" || way == "folders";
    if (behaviour == "no Deleted Items" && !for_good) {
      EXPECT_EQ(Numbers(Everything()), Numbers(before)) << "nobody knows where it would go";
      EXPECT_GT(box.Count("no Deleted Items folder"), 0);
      return;
    }
    std::map<std::string, int> foreseen = Numbers(expected);
    const bool only_moved = behaviour == "moves what is removed" && way == "turbo";
    if (only_moved) foreseen["/Deleted Items"] += to_take;
    EXPECT_EQ(Numbers(Everything()), foreseen);
    EXPECT_EQ(box.Count("Not all items"), 0);
    EXPECT_EQ(box.Count("items were moved"), only_moved || !for_good ? 1 : 0);
    EXPECT_EQ(app.run.ProcessedCount, to_take);
  }
  // `touched` are items that another program has moved or taken away.
  void Expect_Nothing_Else(const std::set<std::string>& touched = {}) {
    Contents now = Everything();
    int done = 0, left = 0;
    for (const auto& [id, path] : before) {
      if (touched.contains(id)) continue;
      const bool as_foreseen =
          now.contains(id) ? expected.contains(id) && now[id] == expected[id] : !expected.contains(id);
      const bool chosen = !expected.contains(id) || expected[id] != path;
      EXPECT_TRUE(chosen || as_foreseen) << id << " of " << path << " was not chosen";
      if (chosen && items.contains(id)) ++(as_foreseen ? done : left);
    }
    EXPECT_FALSE(app.phase.Processing());
    const bool one_run = box.Count(" identified for ") == 1 && !(way == "folders");
    const int processed = app.run.ProcessedCount, most = done + static_cast<int>(touched.size());
    EXPECT_TRUE(!one_run || (processed >= done && processed <= most)) << processed << " of " << done;
    const bool summed_up = box.Count("item was ") + box.Count("items were ") > 0 && !app.run.Cancelled;
    EXPECT_TRUE(!summed_up || left == 0 || box.Count("Not all items could be deleted") == 1) << left;
  }
};

}  // namespace tidyfold
