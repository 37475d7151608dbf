#include "doubles/core_window.h"
#include "outlook/stored_protection.h"
#include "settings/file_registry.h"

namespace tidyfold {
namespace {

class Session : public Core_Window {};

TEST_F(Session, Attaches_Or_Starts_And_Says_Which_Failed) {
  struct Case {
    std::vector<const char*> failing;
    const char* message;
  };
  const char *get = "Automation.GetObject", *create = "Automation.CreateObject",
             *open = "Application.GetNamespace";
  const Case cases[] = {{{}, nullptr},
                        {{get}, nullptr},
                        {{get, create}, "Unable to initialize Outlook.  Please try again."},
                        {{open}, "Unable to initialize Outlook Namespace.  Please try again."}};
  for (const Case& c : cases) {
    plan.Forget_Faults();
    for (const char* member : c.failing) Fail(member);
    const int created = plan.Calls(create);
    if (c.message != nullptr) Expect_Message(c.message);
    const std::string last = c.failing.empty() ? "" : c.failing.back();
    EXPECT_EQ(session.Start_Outlook(), last.empty() || last == get);
    EXPECT_EQ(session.name_space != nullptr, last.empty() || last == get);
    EXPECT_EQ(plan.Calls(create) - created, last.empty() || last == open ? 0 : 1);
    box.Verify();
  }
}

TEST(Protection_In_The_Settings, Lasts_And_Says_When_It_Is_Not_Known) {
  const Temporary_Directory directory;
  const std::filesystem::path file = directory / "settings.json";
  for (const bool is_protected : {false, true, false}) {
    File_Registry registry(file, {});
    Stored_Protection(registry).Set_Protected("S", "F1", is_protected);
    File_Registry again(file, {});
    EXPECT_EQ(Stored_Protection(again).Is_Protected("S", "F1"), is_protected);
    EXPECT_FALSE(Stored_Protection(again).Is_Protected("S", "F2"));
  }
  // Nothing can be read from or written to a directory.
  File_Registry registry(directory.Path(), {});
  Stored_Protection unreadable(registry);
  EXPECT_THROW(unreadable.Is_Protected("S", "F1"), Automation_Error);
  EXPECT_THROW(unreadable.Set_Protected("S", "F1", true), Automation_Error);
}

class Tree : public Core_Window {
 protected:
  // Every node as its caption, children in brackets.
  std::string Picture(int node = 1) const {
    std::string picture = tree.Text(node);
    for (int child = tree.Child(node); child != 0; child = tree.Next(child))
      picture += (child == tree.Child(node) ? "[" : ", ") + Picture(child);
    return picture + (tree.Child(node) == 0 ? "" : "]");
  }
  void Add_Small_Store(const char* name) {
    Memory_Store& made = outlook.Add_Store(name, Memory_Outlook::Default_Folders::None);
    const MAPIFolder_Ptr b = made.Add_Folder(*made.Top_Folder(), "b", 0);
    made.Add_Folder(*made.Top_Folder(), "A", 0);
    made.Add_Folder(*b, "c", 0);
    made.Add_Item(*b, {});
  }
};

TEST_F(Tree, One_Store_Is_The_Root) {
  Add_Items(store.Folder({"Inbox"}), 3);
  Build();
  EXPECT_EQ(tree.Text(1), "Personal - (3)");
  EXPECT_TRUE(records[1].Loaded) << "it holds no items of its own";
  EXPECT_EQ(tree.Text(tree.Child(1)), "Calendar - (0)") << "sorted";
  EXPECT_EQ(tree.Count(), 11);
  folder_tree.Set_Start_Folder();
  EXPECT_EQ(tree.Selected_Item(), Node("Inbox"));
}

TEST_F(Tree, Several_Stores_Hang_Below_A_Root_That_Is_No_Folder) {
  Add_Small_Store("Zoo");
  Add_Small_Store("Archive");
  Build();
  const std::string zoo = " - (1)[A - (0), b - (1)[c - (0)]]";
  EXPECT_EQ(Picture().substr(0, 24), "Outlook - (2)[Personal -");
  EXPECT_TRUE(Picture().ends_with(", Zoo" + zoo + ", Archive" + zoo + "]")) << Picture();
  EXPECT_EQ(records[1].Folder, nullptr);
  // EntryIDs start anew in every store; only the StoreID tells them apart.
  const int in_zoo = Node("Zoo"), in_archive = Node("Archive");
  EXPECT_EQ(records[in_zoo].Folder->EntryID(), records[in_archive].Folder->EntryID());
  EXPECT_EQ(tree.Key(in_zoo), "-:::-" + records[in_zoo].Folder->EntryID() + "-:::-STORE2");
  EXPECT_NE(tree.Key(in_zoo), tree.Key(in_archive));

  EXPECT_EQ(records[Node("Inbox")].DeletedItemsIndex, Node("Deleted Items"));
  EXPECT_EQ(records[Node("c")].DeletedItemsIndex, 0) << "a store without one";
}

TEST_F(Tree, Captions_Count_What_A_Collapsed_Node_Hides) {
  const MAPIFolder_Ptr inbox = store.Folder({"Inbox"});
  const MAPIFolder_Ptr below = store.Add_Folder(*inbox, "Below", 0);
  Add_Items(inbox, 2);
  Add_Items(below, 5);
  Build();
  const int node = Node("Inbox"), child = Node("Below");
  struct Case {
    bool checked, child_checked, expanded, bold;
    const char* text;
  };
  for (const Case& c :
       {Case{false, false, false, false, "Inbox - (7)"}, Case{true, false, false, true, "Inbox - (2)"},
        Case{true, true, false, true, "Inbox - (7)"}, Case{false, true, false, true, "Inbox - (5)"},
        Case{false, true, true, false, "Inbox - (2)"}, Case{true, true, true, true, "Inbox - (2)"}}) {
    tree.Set_Checked(node, c.checked);
    tree.Set_Checked(child, c.child_checked);
    tree.Set_Expanded(node, c.expanded);
    folder_tree.Set_Node_Text(node);
    EXPECT_EQ(tree.Text(node), c.text);
    EXPECT_EQ(tree.Bold(node), c.bold) << c.text;
  }
}

TEST_F(Tree, Folders_With_The_Names_Of_Default_Ones_Are_Kept_As_Well) {
  const MAPIFolder_Ptr deeper = store.Add_Folder(*store.Folder({"Notes"}), "Deleted Items", 0);
  const MAPIFolder_Ptr lower_case = store.Add_Folder(*deeper, "inbox", 0);
  Build();
  EXPECT_TRUE(folder_tree.Check_Default_Folder(deeper));
  EXPECT_FALSE(folder_tree.Check_Default_Folder(lower_case));
  EXPECT_FALSE(folder_tree.Check_Default_Folder(nullptr));
  EXPECT_EQ(records[tree.Child(Node("Notes"))].DeletedItemsIndex, Node("Deleted Items"))
      << "the store's own is at its top level";
  plan.Fail_Always("MAPIFolder.Name", fault);
  Expect_Report("Check_Default_Folder");
  EXPECT_TRUE(folder_tree.Check_Default_Folder(records[Node("inbox")].Folder)) << "the safe answer";
}

// A store that does not tell: the session's own folder, and else the name.
TEST_F(Tree, Roles_Come_From_The_Store_The_Session_Or_The_Name) {
  store.Behave("local names");
  Memory_Store& other = outlook.Add_Store("Archiv");
  other.Rename_Folder(*other.Folder({"Deleted Items"}), "Éléments supprimés");
  plan.Fail_Always("MAPIFolder.Store", {automation_error::not_supported, "Too old.", "Test"});
  Build();
  for (const char* name : {"Gelöschte Elemente", "Éléments supprimés"}) {
    EXPECT_EQ(Record(name).Role, default_folder_deleted_items) << name;
    EXPECT_TRUE(deleted_items.Is_Deleted_Items_Folder(Node(name)));
    EXPECT_EQ(records[tree.Parent(Node(name))].DeletedItemsIndex, Node(name));
  }
  plan.Forget_Faults();
  Build();
  EXPECT_EQ(Record("Éléments supprimés").Role, 0) << "this store says that it has none";
  EXPECT_EQ(Record("Gelöschte Elemente").Role, default_folder_deleted_items);
}

// One call of each kind fails: one report, and all that does not hang on that call is in the tree.
TEST_F(Tree, A_Failing_Call_Costs_One_Report_And_No_Sibling) {
  session.Start_Outlook();
  const MAPIFolder_Ptr inbox = store.Folder({"Inbox"});
  for (const char* name : {"x", "y"}) store.Add_Folder(*inbox, name, 0);
  struct Case {
    const char* member;
    int number, missing;
    const char* location;
  };
  for (const Case& c :
       {Case{"MAPIFolder.EntryID", 3, 0, nullptr}, Case{"Folders.Item", 3, 3, "Process all sub-Folders"},
        Case{"MAPIFolder.Name", 2, 1, "Add_Tree_Node - Creating Node"},
        Case{"Items.Count", 1, 0, "Build_Folder_Tree - Configure Root Node"},
        Case{"Items.Count", 2, 0, "Get_Folder_Item_Count"},
        Case{"Folders.Count", 4, 2, "Add_Tree_Node - Processing Children"}}) {
    plan.Forget_Faults();
    plan.Fail_Call(c.member, c.number, fault);
    if (c.location != nullptr) Expect_Report(c.location);
    folder_tree.Build_Folder_Tree();
    EXPECT_EQ(tree.Count(), 13 - c.missing) << c.member << " " << c.number;
    EXPECT_EQ(records.Upper_Bound(), tree.Upper_Bound());
    EXPECT_EQ(errors.stack.Count(), 0);
    box.Verify();
  }
}

TEST_F(Tree, A_Call_That_Always_Fails_Costs_One_Report) {
  session.Start_Outlook();
  for (const char* member : {"Folders.Item", "Folders.Count", "MAPIFolder.Folders", "Items.Count"}) {
    plan.Forget_Faults();
    const int before = plan.Calls(member);
    plan.Fail_Where(
        [&](const Store_Call& call) { return call.member == member && plan.Calls(member) > before + 1; },
        fault);
    Expect_Report("Planned.");
    folder_tree.Build_Folder_Tree();
    EXPECT_GE(tree.Count(), 1) << member;
    box.Verify();
  }
}

TEST_F(Tree, A_Report_Of_A_Count_May_Rebuild_The_Tree_Under_The_Caption) {
  Build();
  plan.Fail_Call("Items.Count", 1, fault);
  box.Expect("Planned.", Buttons::OK_Only, Answer::OK, [&] { Build(); });
  box.Expect("", Buttons::OK_Only, Answer::OK);
  folder_tree.Set_Node_Text(Node("Tasks"));
  EXPECT_EQ(tree.Text(Node("Tasks")), "Tasks - (0)");
}

TEST_F(Tree, Goes_A_Thousand_Deep_And_Loses_A_Branch_Whole) {
  MAPIFolder_Ptr at = store.Folder({"Tasks"});
  for (int depth = 1; depth <= 1000; ++depth) at = store.Add_Folder(*at, "d" + std::to_string(depth), 0);
  Add_Items(at, 1);
  Build();
  EXPECT_EQ(tree.Count(), 1011);
  EXPECT_EQ(tree.Text(1), "Personal - (1)");
  EXPECT_EQ(records[Node("d1000")].DeletedItemsIndex, Node("Deleted Items"));
  const int gone = Node("d1"), wastebasket = Node("Deleted Items");
  folder_tree.Remove_Folder_Node(gone);
  EXPECT_EQ(tree.Count(), 11);
  EXPECT_EQ(records[gone + 500].Folder, nullptr);
  folder_tree.Remove_Folder_Node(wastebasket);
  EXPECT_EQ(records[Node("Inbox")].DeletedItemsIndex, 0);
}

}  // namespace
}  // namespace tidyfold
