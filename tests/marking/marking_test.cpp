#include "app/window_fixture.h"

namespace tidyfold {

namespace {

constexpr const char* no_default = "Cannot mark a default folder while \" Delete Folders\" is marked.";
constexpr const char* no_root = "Cannot select a root folder while \" Delete Folders\" is marked.";
constexpr const char* no_wastebasket =
    "Cannot marked \"Deleted Items\" folder if Permanent Delete box is unchecked.";
constexpr const char* with_parent =
    "Cannot unmark a folder while its parent folder is marked and \"Delete Folders\" is also marked.";

struct Rule {
  std::size_t stores;
  const char *option, *first;  // ticked before
  const char* path;            // "OUTLOOK": the root that stands for several stores
  bool ticked;
  const char* message;  // of the refusal
  bool after;
};

const Rule rules[] = {
    {2, "DeleteFolders", nullptr, "OUTLOOK", true, nullptr, true},
    {1, "DeleteFolders", nullptr, "Inbox", true, no_default, false},
    {1, "DeleteFolders", nullptr, "Projects/Notes", true, no_default, false},
    {1, "DeleteFolders", nullptr, "Deleted Items", true, no_default, false},
    {1, "DeleteFolders", nullptr, "", true, no_root, false},
    {1, "DeleteFolders", nullptr, "", false, no_root, false},
    {2, "DeleteFolders", nullptr, "", true, no_root, false},
    {1, "", nullptr, "Deleted Items", true, no_wastebasket, false},
    {1, "", nullptr, "Projects/Deleted Items", true, no_wastebasket, false},
    {1, "PermanentDelete", nullptr, "Deleted Items", true, nullptr, true},
    {1, "DeleteFolders", "Projects", "Projects/Alpha", false, with_parent, true},
    {1, "", "Projects/Alpha", "Projects/Alpha", false, nullptr, false},
    {1, "DeleteFolders", "Projects/Alpha", "Projects/Alpha", false, nullptr, false},
};

}  // namespace

TEST(Marking, Rules_Allow_Or_Refuse_And_A_Refusal_Changes_Nothing) {
  for (const Rule& rule : rules) {
    SCOPED_TRACE(&rule - rules);
    Window_Fixture f(rule.stores);
    for (const char* path : {"Projects/Alpha", "Projects/Notes", "Projects/Deleted Items"}) f.Folder(path);
    f.Add("Inbox", "shown");
    f.Load();
    f.Set(rule.option);
    if (rule.first != nullptr) f.Tick(rule.first);
    const int node = rule.path == std::string("OUTLOOK") ? 1 : f.Node(rule.path);
    const auto state = [&] {
      return std::tuple(f.window.lblCurrentFolder.Caption(), f.window.grdItems.Row_Version(),
                        f.window.cmdRun.Enabled());
    };
    const auto before = state();
    if (rule.message != nullptr) f.Expect({{rule.message, OK}});
    f.Tick(node, rule.ticked);
    f.box.Verify();
    EXPECT_EQ(f.tree.Checked(node), rule.after);
    if (rule.message == nullptr) continue;
    EXPECT_EQ(f.box.Boxes().back().icon, Icon::Critical);
    EXPECT_EQ(state(), before);
  }
}

// A default name in a branch that goes: it stays unmarked, also when it is looked at.
TEST(Marking, A_Click_Is_No_Untick_And_A_Key_Is_A_Click) {
  Window_Fixture f;
  f.Folder("Projects/Notes");
  f.Load();
  f.Set("DeleteFolders");
  f.Tick("Projects");
  f.Click("Projects/Notes");
  EXPECT_FALSE(f.Checked("Projects/Notes"));
  EXPECT_EQ(f.window.lblCurrentFolder.Caption(), "Current Folder: Notes");
  f.tree.MouseUp();  // decides nothing without a click
  f.tree.Tick(f.Node("Inbox"), true);
  f.Expect({{no_default, OK}});
  f.tree.KeyUp();
}

TEST(Marking, A_Branch_Takes_The_Mark_Where_It_May_And_Unmark_All_Takes_It_Away) {
  for (const bool delete_folders : {false, true}) {
    Window_Fixture f(2);
    f.Add("Projects/Alpha/Deep", "deep");
    f.Folder("Deleted Items/Apart");
    f.Load();
    f.Set(delete_folders ? "ShowAllFolders DeleteFolders" : "ShowAllFolders MarkSubFolders");
    f.Tick(1);
    for (const char* path : {"", "Inbox", "Deleted Items", "Deleted Items/Apart", "Projects/Alpha/Deep"}) {
      const std::string name = path;
      const bool may =
          name == "Deleted Items" ? false : !delete_folders || name.find('/') != std::string::npos;
      EXPECT_EQ(f.Checked(path), may) << path;
      EXPECT_EQ(f.tree.Bold(f.Node(path)), may) << path;
    }
    EXPECT_TRUE(f.tree.Expanded(f.Node("Projects/Alpha")));
    EXPECT_EQ(f.window.grdItems.Rows(), 2) << "the deep item shows once";
    f.Set("DeleteFolders", 0);
    f.Tick(1, false);
    EXPECT_TRUE(f.Checked("Projects/Alpha")) << "unticking is for one node";
    EXPECT_TRUE(f.window.cmdRun.Enabled() && f.window.mnuClean.Enabled() && f.window.mnuUnmark.Enabled());
    f.window.mnuUnmark.Click();
    EXPECT_FALSE(f.window.cmdRun.Enabled() || f.window.mnuClean.Enabled() || f.window.mnuUnmark.Enabled());
    EXPECT_FALSE(f.Checked("Projects/Alpha") || f.tree.Bold(f.Node("Projects")));
    EXPECT_EQ(f.window.grdItems.Rows(), 1);
  }
}

TEST(Marking, Moving_On_Unmarks_The_Folder_That_Was_Shown_For_Its_Rows) {
  for (const char* options : {"", "SelectByRow", "ShowAllFolders", "ShowAllFolders SelectByRow"}) {
    Window_Fixture f;
    f.Load();
    f.Tick("Inbox");
    f.Set(options);
    f.Click("Outbox");
    EXPECT_EQ(f.Checked("Inbox"), options != std::string("SelectByRow")) << options;
  }
}

TEST(Marking, Columns_Follow_The_Type_Of_The_Folder_Where_It_Is_Told) {
  Window_Fixture f;
  f.Load();
  f.Click("Calendar");
  EXPECT_EQ(f.window.grdItems.Cols(), 5);
  f.plan.Fail_Call("MAPIFolder.DefaultItemType", 1, {1, "gone", "store"});
  f.box.Expect("Trap:      \t\tNode_Click_Or_Check - changing folder types", Buttons::OK_Only, OK);
  f.box.Expect("Node_Click_Or_Check", Buttons::OK_Only, OK);
  f.Click("Inbox");
  EXPECT_EQ(f.window.grdItems.Cols(), 5) << "left as they are";
  EXPECT_EQ(f.window.lblCurrentFolder.Caption(), "Current Folder: Inbox");
  f.Click("Outbox");
  EXPECT_EQ(f.window.grdItems.Cols(), 6);
}

}  // namespace tidyfold
