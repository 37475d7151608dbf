// Random walks through the window: after every step the total, the marks of the rows and the commands say
// what an oracle says that counts by itself.
#include <random>

#include "app/window_fixture.h"

namespace tidyfold {

namespace {

struct Walk : Window_Fixture {
  std::mt19937 random;
  // The filters as they were last taken over.
  bool by_date = false, by_subject = false, unread_too = false, flagged_too = false;
  Date cutoff = 0;
  std::set<int> protected_nodes;  // by their own mark
  std::string subject;

  explicit Walk(std::uint32_t seed) : Window_Fixture("folder Deleted Items"), random(seed) {
    box.Answer_Anything();
    for (const char* path : {"Inbox", "Inbox/Lists", "Old", "Old/Deep", "Tasks"})
      for (int number = One_Of(9); number > 0; --number) {
        New_Item item;
        item.subject = One_Of(2) == 0 ? "re" : "other";
        item.unread = One_Of(4) == 0;
        item.flagged = One_Of(4) == 0;
        item.received = 44000 + One_Of(10);
        item.size = 10;
        Add(path, item);
      }
    app.Form_Load();
  }
  int One_Of(int count) { return static_cast<int>(random() % static_cast<std::uint32_t>(count)); }
  int Any_Folder() { return 1 + One_Of(tree.Upper_Bound()); }

  void Step() {
    switch (One_Of(13)) {
      case 0:
      case 1:
        tree.Tick(Any_Folder(), One_Of(3) != 0), tree.MouseUp();
        break;
      case 2:
        tree.Click_Node(Any_Folder()), tree.MouseUp();
        break;
      case 3:
        window.chkSelectDate.Set_Value(1 - window.chkSelectDate.Value()), Take_Over();
        break;
      case 4:
        window.chkSelectSubject.Set_Value(1 - window.chkSelectSubject.Value()), Take_Over();
        break;
      case 5:
        for (CheckBox* const box_to_turn : {&window.chkSelectUnread, &window.chkSelectFlagged})
          if (One_Of(2) == 0) box_to_turn->Set_Value(1 - box_to_turn->Value()), Take_Over();
        break;
      case 6:
        window.dtpCutoffDate.Set_Value(44000 + One_Of(10));
        if (One_Of(2) == 0) window.dtpCutoffDate.CloseUp(), Take_Over();
        break;
      case 7:
        window.txtSelectSubject.Set_Text(One_Of(2) == 0 ? "re" : "oth");
        if (One_Of(2) == 0) window.txtSelectSubject.Validate(), Take_Over();
        break;
      case 8:
        window.chkShowAllFolders.Set_Value(One_Of(2));
        break;
      case 9:
        if (!window.chkSelectByRow.Checked())
          (One_Of(2) == 0 ? window.chkShowSelectedItems : window.chkShowUnselectedItems).Set_Value(One_Of(2));
        break;
      case 10:
        window.chkSelectByRow.Set_Value(One_Of(2));
        break;
      case 11: {
        // Protection comes off more often than it comes on.
        const int node = One_Of(3) == 0 || protected_nodes.empty() ? Any_Folder() : *protected_nodes.begin();
        tree.Click_Node(node), tree.MouseUp(), window.mnuProtect.Click();
        if (protected_nodes.erase(node) == 0) protected_nodes.insert(node);
        break;
      }
      default:
        if (grid.Rows() > 1) Pick(1 + One_Of(grid.Rows() - 1), One_Of(3));
    }
  }
  // What a handler takes over is all that stands in the boxes.
  void Take_Over() {
    by_date = window.chkSelectDate.Checked();
    by_subject = window.chkSelectSubject.Checked();
    unread_too = window.chkSelectUnread.Checked();
    flagged_too = window.chkSelectFlagged.Checked();
    cutoff = window.dtpCutoffDate.Value();
    subject = window.txtSelectSubject.Text();
  }
  bool Locked(int node) const {
    return node != 0 && (protected_nodes.contains(node) || Locked(tree.Parent(node)));
  }
  bool Chosen(int folder, const ItemData& item) const {
    return tree.Checked(folder) && !Locked(folder) && (!by_date || item.ItemDate <= cutoff) &&
           (!by_subject || item.Subject.starts_with(subject)) && (!item.Unread || unread_too) &&
           (!item.Flagged || flagged_too);
  }
  void Compare() {
    const bool by_row = window.chkSelectByRow.Checked();
    int chosen = 0, ticked = 0, marked = 0, shown = 0;
    for (int folder = 1; folder <= tree.Upper_Bound(); ++folder) {
      ticked += tree.Checked(folder) ? 1 : 0;
      EXPECT_FALSE(Locked(folder) && tree.Checked(folder)) << tree.Text(folder);
      EXPECT_EQ(tree.Lock(folder) != Node_Lock::None, Locked(folder)) << tree.Text(folder);
      const bool current =
          window.lblCurrentFolder.Caption() == "Current Folder: " + Record(folder).FolderName;
      const bool in_view = window.chkShowAllFolders.Checked() ? tree.Checked(folder) : current;
      for (const ItemData& item : Record(folder).ItemCache) {
        const bool is_chosen = Chosen(folder, item);
        chosen += is_chosen ? 1 : 0;
        shown +=
            in_view && (is_chosen ? window.chkShowSelectedItems : window.chkShowUnselectedItems).Checked();
      }
    }
    EXPECT_EQ(grid.Rows() - 1, shown);
    std::set<std::string> keys;
    for (int row = 1; row < grid.Rows(); ++row) {
      const GridRow& at = grid.Row_At(row);
      const bool is_chosen = Chosen(at.row_data, Record(at.row_data).Cached(at.item));
      EXPECT_TRUE(by_row ? !at.marked || !Locked(at.row_data) : at.marked == is_chosen) << "row " << row;
      EXPECT_EQ(at.back_colour, at.marked ? selected_row_colour : system_window_background);
      EXPECT_TRUE(keys.insert(grid.TextMatrix(row, 0)).second) << "a row is doubled";
      EXPECT_TRUE((is_chosen ? window.chkShowSelectedItems : window.chkShowUnselectedItems).Checked());
      marked += at.marked ? 1 : 0;
    }
    const int total = by_row ? marked : chosen;
    const std::string size = total == 0 ? "" : " (" + std::to_string(total * 10) + " bytes)";
    EXPECT_EQ(window.sbStatusBar.Panel_Text(3), "Total Selected:  " + std::to_string(total) + size);
    EXPECT_EQ(window.cmdRun.Enabled(), (by_row ? marked : ticked) > 0);
    EXPECT_EQ(window.mnuSelectAllRows.Enabled(), by_row && grid.Rows() > 1);
    const int sorted = app.columns.Get_Sort_Column(app.rows.SortField);
    EXPECT_EQ(window.mnuSortBy[5].Enabled(), sorted < grid.Cols());
  }
};

}  // namespace

TEST(Walk, Every_Number_Is_True_After_Every_Step) {
  for (std::uint32_t seed = 1; seed <= 400 && !testing::Test::HasFailure(); ++seed) {
    Walk walk(seed);
    for (int step = 1; step <= 120 && !testing::Test::HasFailure(); ++step) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
      walk.Step();
      walk.Compare();
    }
  }
}

}  // namespace tidyfold
