#include "cache/item_cache.h"

#include <functional>
#include <map>
#include <set>
#include <tuple>

#include "cache/item_dates.h"
#include "doubles/core_window.h"

namespace tidyfold {
namespace {

class Dates : public Core_Window {};

TEST_F(Dates, Go_By_The_Class_Of_The_Item) {
  struct Case {
    std::int32_t item_class;
    Date modified, completed, due, expected;
  };
  const Date none = no_date;
  const Case cases[] = {{43, 20, 30, 40, 10},           {52, 20.5, 30, 40, 20},
                        {57, 20, 30, 40, 10},           {26, 20, 30, 40, 50},
                        {40, 20, 30, 40, 20},           {48, 20, 30, 40.5, 40},
                        {48, 60.5, 30, 40, 60},         {48, 37712, 37743, none, 37743},
                        {48, 20, none + 0.5, none, 20}, {48, none, none, none, none}};
  for (const Case& c : cases) {
    New_Item item;
    item.item_class = c.item_class;
    item.received = 10.9;
    item.last_modified = c.modified;
    item.completed = c.completed;
    item.due = c.due;
    item.end = 50.75;
    const Item_Ptr stored = store.Item(store.Add_Item(*store.Folder({"Tasks"}), item));
    EXPECT_EQ(Get_Item_Date(*stored, c.item_class), c.expected) << c.item_class;
  }
}

class Filters : public Core_Window {
 protected:
  Filters() {
    tree.Set_Node_Tag(tree.Add(0, "OUTLOOK", "Outlook"), "1");
    records.Recreate();
    records[1].ItemCache.assign(3, {item_class::mail, "", "RE: invoice", 37802, false, false, "ID", 0});
    records[1].CachedCount = 3;
    tree.Set_Checked(1, true);
  }
  bool Passes(std::int32_t item) {
    records[1].Judged = {};
    return app.planner.Check_Filtered_Record(1, item);
  }
  Item_Filter Filter() const { return Read_Filter(window); }
};

TEST_F(Filters, Compare_Subjects) {
  struct Case {
    const char *text, *subject, *match;  // "c": case, "w": word
    bool passes;
  };
  const Case cases[] = {
      {"re", "RE: invoice", "", true}, {"re", "Reply", "", true},       {"re", "Fw: re", "", false},
      {"re", "RE: x", "w", false},     {" re  ", "  Re ", "w", true},   {"Re", "RE: x", "c", false},
      {"RE", "RE: x", "c", true},      {"re", " re", "c", false},       {" re", " re ", "cw", true},
      {"re ", "re", "cw", true},       {"", "anything", "", true},      {"", "any", "cw", false},
      {"", "  ", "w", true},           {"ÄRGER", "ärger im", "", true}, {"ärger", "Ärger", "c", false},
      {"re:", "re", "", false},        {"re", "re\t", "w", false}};
  for (const Case& c : cases) {
    window.chkSelectSubject.Set_Value(1);
    window.txtSelectSubject.Set_Text(c.text);
    window.chkMatchCase.Set_Value(std::string_view(c.match).starts_with('c') ? 1 : 0);
    window.chkMatchWord.Set_Value(std::string_view(c.match).ends_with('w') ? 1 : 0);
    EXPECT_EQ(Filter().Check_Subject(c.subject), c.passes) << c.text << " / " << c.subject << " " << c.match;
    window.chkSelectSubject.Set_Value(0);
    EXPECT_TRUE(Filter().Check_Subject(c.subject));
  }
}

TEST_F(Filters, Compare_Dates_Types_And_What_Is_Unread) {
  window.chkSelectDate.Set_Value(1);
  window.dtpCutoffDate.Set_Value(37802.4);
  EXPECT_TRUE(Filter().Check_Date(37802));
  for (const Date failing : {37803.0, no_date}) EXPECT_FALSE(Filter().Check_Date(failing)) << failing;
  window.chkSelectType.Set_Value(1);
  EXPECT_FALSE(Filter().Check_Type(item_class::mail)) << "no type is wanted";
  window.chkType[0].box.Set_Value(1);
  window.chkType[5].box.Set_Value(1);
  for (const int passing : {item_class::mail, item_class::note}) EXPECT_TRUE(Filter().Check_Type(passing));
  for (const int failing : {53, 26, 45, 69}) EXPECT_FALSE(Filter().Check_Type(failing)) << failing;
  window.dtpCutoffDate.CloseUp();
  EXPECT_TRUE(Passes(2));
  records[1].Cached(2).Unread = true;
  EXPECT_FALSE(Passes(2));
  window.chkSelectUnread.Set_Value(1);
  EXPECT_TRUE(Passes(2));
}

TEST_F(Filters, Let_Nothing_Pass_That_Is_Not_Marked_Read_And_There) {
  for (const std::int32_t outside : {-1, 0, 4}) EXPECT_FALSE(Passes(outside)) << outside;
  records[1].Cached(1).ItemClass = 0;
  records[1].Cached(2).ItemClass = ItemData::deleted;
  EXPECT_FALSE(Passes(1));
  EXPECT_FALSE(Passes(2));
  EXPECT_TRUE(Passes(3));
  records[1].Cached(3).EntryID.clear();
  EXPECT_FALSE(Passes(3)) << "it could not be read to its end";
  records[1].Cached(3).EntryID = "ID";
  tree.Set_Checked(1, false);
  EXPECT_FALSE(Passes(3));
}

// A text or date counts from Enter, or from when its box loses the focus, and not before.
TEST_F(Filters, Are_In_Force_When_They_Are_Taken_Over) {
  std::uint32_t version = app.filter.Version();
  const auto changed = [&] { return std::exchange(version, app.filter.Version()) != version; };
  for (CheckBox* option : {&window.chkSelectSubject, &window.chkSelectDate, &window.chkSelectType}) {
    option->Set_Value(1);
    EXPECT_TRUE(changed()) << option->Name();
  }
  const std::pair<const char*, std::function<void()>> steps[] = {
      {"chkType", [&] { window.chkType[1].box.Set_Value(1); }},
      {"text, Enter", [&] { window.txtSelectSubject.Set_Text("a"), window.txtSelectSubject.KeyPress(13); }},
      {"date, Enter", [&] { window.dtpCutoffDate.Set_Value(5), window.dtpCutoffDate.KeyDown(13); }},
      {"date, calendar", [&] { window.dtpCutoffDate.Set_Value(6), window.dtpCutoffDate.CloseUp(); }},
      {"text, Tab", [&] { window.txtSelectSubject.Set_Text("new"), window.txtSelectSubject.Validate(); }}};
  for (const auto& [name, step] : steps) {
    step();
    EXPECT_TRUE(changed()) << name;
  }
  window.txtSelectSubject.Set_Text("being typed");
  window.txtSelectSubject.KeyPress('x');
  window.dtpCutoffDate.KeyDown(9);
  EXPECT_FALSE(changed());
  EXPECT_EQ(app.filter.Filter().subject, "new");
}

// Item by item; a hundred rows at a time where the parameter is true.
class Cache : public Core_Window, public testing::WithParamInterface<bool> {
 protected:
  Cache() {
    Forget_Faults();
    plan.on_call = [this](const Store_Call& call) {
      if (call.member == "Table.GetArray")
        Reading_In(records[tree.Find_Key("-:::-" + call.entry_id + "-:::-STORE1")].FolderName);
      if (call.member != "Item.Subject") return;
      most_often_read_ = std::max(most_often_read_, ++subjects_read_[call.entry_id]);
      Reading_In(store.Item(call.entry_id)->Parent()->Name());
    };
  }
  bool By_Rows() const { return GetParam(); }
  void Forget_Faults() {
    plan.Forget_Faults();
    if (!By_Rows())
      plan.Fail_Always("MAPIFolder.GetTable", {automation_error::not_supported, "No tables.", "Test"});
  }
  void Reading_In(const std::string& folder) {
    if (order_.empty() || order_.back() != folder) order_.push_back(folder);
  }
  MAPIFolder_Ptr Inbox() { return store.Folder({"Inbox"}); }
  void Load() {
    Build("Inbox");
    cache.Cache_Folder_Items();
  }
  void When_Read(const char* name, int count, std::function<void()> action) {
    events.When([=, this] { return Record(name).CachedCount == count; }, std::move(action));
  }
  // Cache, folder and grid agree about a folder that is in view; nothing is there twice.
  void Expect_In_Step(std::string_view name, std::int32_t count) {
    const FolderData& record = Record(name);
    EXPECT_TRUE(record.Loaded);
    EXPECT_EQ(record.CachedCount, count);
    EXPECT_EQ(grid.Rows(), count + 1);
    const Items_Ptr items = record.Folder->Items();
    ASSERT_EQ(items->Count(), count);
    std::vector<std::string> there, cached;
    for (std::int32_t i = 1; i <= count; ++i) {
      there.push_back(items->Item(i)->EntryID());
      cached.push_back(record.Cached(i).EntryID);
    }
    // A row's place is no place in the folder.
    for (auto* ids : {&there, &cached})
      if (By_Rows()) std::sort(ids->begin(), ids->end());
    ASSERT_EQ(there, cached);
  }
  std::map<std::string, int> subjects_read_;
  int most_often_read_ = 0;
  std::vector<std::string> order_;  // of the folders that were read
};

class Item_By_Item : public Cache {};

TEST_P(Cache, Hands_Rows_Over_In_Hundreds) {
  Add_Items(Inbox(), 250);
  std::set<int> seen;
  grid.changed = [&] { seen.insert(grid.Rows()); };
  Load();
  EXPECT_EQ(seen, (std::set<int>{1, 101, 201, 251}));
  grid.changed = {};
  Expect_In_Step("Inbox", 250);
  EXPECT_EQ(most_often_read_, By_Rows() ? 0 : 1);
  EXPECT_EQ(grid.TextMatrix(1, 0), Row_Key(Node("Inbox"), 250)) << "newest first";
}

TEST_P(Cache, Reads_Of_Each_Item_What_It_Shows) {
  New_Item item;
  item.sender = "Ann";
  item.body = "zwölf Zeichen; und noch viel mehr";
  item.unread = true;
  item.size = 77;
  item.received = 100.5;
  store.Add_Item(*Inbox(), item);
  item.item_class = item_class::note;
  store.Add_Item(*Inbox(), item);
  plan.Fail_Call("Item.UnRead", 2, fault);
  plan.Fail_Call("Item.FlagStatus", 1, fault);
  store.Change_Item(Inbox()->Items()->Item(1)->EntryID(), [](New_Item& mail) { mail.flagged = true; });
  Load();
  const std::vector<ItemData> cached = Record("Inbox").ItemCache;
  EXPECT_EQ(cached[0].SenderOrText, "Ann");
  EXPECT_EQ(cached[1].SenderOrText, "zwölf Zeichen; und n");
  EXPECT_EQ(cached[0].ItemDate, 100);
  EXPECT_TRUE(cached[0].Unread);
  EXPECT_EQ(cached[1].Unread, By_Rows()) << "what does not say counts as read";
  EXPECT_TRUE(cached[0].Flagged) << "mail that does not say stays";
  EXPECT_FALSE(cached[1].Flagged) << "only mail is asked";
}

TEST_P(Cache, Turns_To_What_The_Person_Turns_To_And_Comes_Back) {
  for (const char* name : {"Inbox", "Notes", "Tasks", "Drafts"}) Add_Items(store.Folder({name}), 120);
  Build("Inbox");
  Mark("Tasks");
  When_Read("Inbox", 110, [&] { tree.Set_Selected_Item(Node("Notes")); });
  // Selecting what is loaded interrupts nothing.
  When_Read("Drafts", 5, [&] { tree.Set_Selected_Item(Node("Inbox")); });
  cache.Cache_Folder_Items();
  EXPECT_EQ(order_, (std::vector<std::string>{"Inbox", "Notes", "Tasks", "Inbox", "Drafts"}));
  EXPECT_EQ(most_often_read_, By_Rows() ? 0 : 1);
  Expect_In_Step("Inbox", 120);
}

TEST_P(Cache, Broken_Off_Anywhere_It_Reads_Nothing_Twice_And_Loses_No_Row) {
  Add_Items(Inbox(), 205);
  for (const int at : {1, 99, 100, 101, 204, 205}) {
    for (const bool stop : {false, true}) {
      subjects_read_.clear();
      most_often_read_ = 0;
      Build("Inbox");
      When_Read("Inbox", at, [&] {
        cache.InterruptCaching = true;
        cache.StopCaching = stop;
      });
      cache.Cache_Folder_Items();
      if (stop) {
        EXPECT_EQ(Record("Inbox").CachedCount, at);
        EXPECT_FALSE(cache.AllFoldersCached);
        EXPECT_FALSE(Record("Inbox").Loaded);
        EXPECT_FALSE(cache.Running());
        // Until it goes on, one item gives way to another; only the count is as before.
        Inbox()->Items()->Remove(1);
        Add_Items(Inbox(), 1);
        cache.Cache_Folder_Items();
      }
      Expect_In_Step("Inbox", 205);
      EXPECT_EQ(most_often_read_, By_Rows() ? 0 : stop && at > 1 ? 2 : 1) << at;
    }
  }
}

// Another program at the same folder: which items it takes away, how many it puts in (in front of all others
// where the number is negative), and how far the folder was read by then.
TEST_P(Cache, Keeps_In_Step_With_A_Folder_That_Changes) {
  const std::tuple<int, std::vector<int>, int> cases[] = {
      {130, {5}, 0},           {130, {130}, 0},  {130, {131}, 0}, {130, {250}, 0}, {130, {1, 2, 200}, 0},
      {249, {1, 249, 250}, 0}, {250, {250}, 0},  {10, {}, 3},     {250, {}, 3},    {130, {60}, 1},
      {130, {60, 240}, 1},     {130, {240}, -1}, {199, {150}, 1}, {60, {}, -1}};
  for (const auto& [at, removed, added] : cases) {
    const MAPIFolder_Ptr folder = store.Add_Folder(*store.Top_Folder(), "Busy", 0);
    Add_Items(folder, 250);
    Build("Busy");
    When_Read("Busy", at, [&, &gone = removed, &come = added] {
      for (auto next = gone.rbegin(); next != gone.rend(); ++next) folder->Items()->Remove(*next);
      events.At_Yield(events.Yields() + (gone.empty() ? 0 : 1), [&] {
        Add_Items(folder, std::abs(come));
        for (std::int32_t left = come < 0 ? folder->Items()->Count() + come : 0; left > 0; --left)
          store.Move_Item(folder->Items()->Item(1)->EntryID(), *folder);
      });
    });
    cache.Cache_Folder_Items();
    Expect_In_Step("Busy", 250 + std::abs(added) - static_cast<int>(removed.size()));
    store.Top_Folder()->Folders()->Remove(store.Top_Folder()->Folders()->Count());
  }
}

TEST_P(Cache, Ends_Though_The_Folder_Never_Stands_Still) {
  const Items_Ptr items = Inbox()->Items();
  for (const bool grows : {true, false}) {
    Add_Items(Inbox(), 50);
    const std::function<void()> change = [&] {
      if (grows) {
        Add_Items(Inbox(), 1);
      } else if (items->Count() > 0) {
        items->Remove(1);
      }
      events.At_Yield(events.Yields() + 1, change);
    };
    events.At_Yield(1, change);
    Load();
    events.Forget_Waiting();
    EXPECT_TRUE(Record("Inbox").Loaded);
    EXPECT_LE(Record("Inbox").CachedCount, items->Count());
  }
}

TEST_P(Item_By_Item, An_Item_That_Fails_Is_Reported_Once_For_All_And_Keeps_No_Other_Out) {
  const std::string bad = Add_Items(Inbox(), 3);
  Add_Items(Inbox(), 2);
  const std::tuple<std::string, std::string, int> cases[] = {
      {"Item.Subject", bad, 4}, {"Item.EntryID", bad, 4}, {"Items.Item", "", 0}};
  for (const auto& [member, id, passing] : cases) {
    Forget_Faults();
    Build("Inbox");
    Mark("Inbox");
    Fail(member, id);
    Expect_Report("Trap:      \t\tCache_Current_Item");
    cache.Cache_Folder_Items();
    box.Verify();
    EXPECT_TRUE(cache.AllFoldersCached);
    EXPECT_EQ(grid.Marked_Rows(), passing);
    EXPECT_EQ(grid.Rows(), 6) << "what could not be read is to be seen";
  }
}

TEST_P(Item_By_Item, Mail_Whose_Sender_Nobody_Tells_Is_There_Without_It) {
  Add_Items(Inbox(), 3);
  Expect_Message("Mail is shown without its sender.\r\n\r\nPlanned.");  // once for both, and for all items
  for (const char* member : {"Automation.Create_Mapi_Utils", "Item.MAPIOBJECT", "Mapi_Utils.HrGetOneProp"}) {
    Forget_Faults();
    Fail(member);
    Load();
    Expect_In_Step("Inbox", 3);
  }
}

TEST_P(Cache, A_Folder_That_Fails_Is_Left_Alone_Until_The_Next_Run) {
  for (const char* name : {"Inbox", "Tasks", "Notes"}) Add_Items(store.Folder({name}), 2);
  const std::string bad = store.Folder({"Tasks"})->EntryID();
  for (const char* member : {"MAPIFolder.Name", "MAPIFolder.Items", "Items.Count"}) {
    for (const bool always : {false, true}) {
      Forget_Faults();
      Build("Inbox");
      Mark("Tasks");
      Fail(member, always ? "" : bad);
      Expect_Report("Planned.");
      cache.Cache_Folder_Items();
      box.Verify();
      EXPECT_FALSE(cache.AllFoldersCached);
      EXPECT_FALSE(Record("Tasks").Loaded);
      EXPECT_EQ(tree.Fore_Colour(Node("Tasks")), unloaded_colour);
      EXPECT_EQ(Record("Notes").Loaded, !always) << member;
      Forget_Faults();
      cache.Cache_Folder_Items();
      EXPECT_TRUE(cache.AllFoldersCached);
      Expect_In_Step("Inbox", 2);
    }
  }
}

TEST_P(Cache, Handlers_May_Reset_Or_Remove_The_Folder_That_Is_Read) {
  Add_Items(Inbox(), 5);
  const auto reset = [&] {
    rows.Remove_Folder_Rows(Node("Inbox"));
    folder_tree.Reset_Folder_Node(Node("Inbox"));
    cache.Cache_Folder_Items();
  };
  Build("Inbox");
  if (By_Rows()) {
    When_Read("Inbox", 4, reset);
  } else {
    plan.Fail_Call("Item.Subject", 4, fault);
    Expect_Report("Planned.", reset);
  }
  cache.Cache_Folder_Items();
  Expect_In_Step("Inbox", 5);
  Build("Inbox");
  When_Read("Inbox", 3, [&] {
    store.Top_Folder()->Folders()->Remove(2);
    rows.Remove_Folder_Rows(Node("Inbox"));
    folder_tree.Remove_Folder_Node(Node("Inbox"));
  });
  cache.Cache_Folder_Items();
  EXPECT_TRUE(cache.AllFoldersCached);
  EXPECT_EQ(grid.Rows(), 1);
}

// A table that fails on the way, or that does not hold all: its rows are given up, and nothing is missing.
TEST_P(Cache, Reads_Item_By_Item_Where_The_Table_Is_No_Good) {
  Add_Items(Inbox(), 1200);
  for (const int number : {1, 2, 3}) {
    Forget_Faults();
    subjects_read_.clear();
    most_often_read_ = 0;
    plan.Fail_Call("Table.GetArray", number, fault);
    Load();
    Expect_In_Step("Inbox", 1200);
    EXPECT_EQ(most_often_read_, 1);
  }
}

constexpr auto way_name = [](const auto& way) { return way.param ? "By_Rows" : "Item_By_Item"; };
INSTANTIATE_TEST_SUITE_P(, Cache, testing::Bool(), way_name);
INSTANTIATE_TEST_SUITE_P(, Item_By_Item, testing::Values(false), way_name);

}  // namespace
}  // namespace tidyfold
