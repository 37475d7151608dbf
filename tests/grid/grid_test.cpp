#include "doubles/core_window.h"

namespace tidyfold {
namespace {

class Grid : public Core_Window {
 protected:
  // A session in which the folder's items have been read and stand in the grid.
  void Show(std::string_view name, int count, std::int32_t item_class = item_class::mail) {
    Add_Items(store.Folder({name}), count, item_class);
    Build(name);
    cache.Cache_Folder_Items();
  }
  std::string Marks() const {
    std::string marks;
    for (int row = 1; row < grid.Rows(); ++row) {
      const GridRow& at = grid.Row_At(row);
      marks += at.marked ? '1' : '0';
      EXPECT_EQ(at.back_colour, at.marked ? selected_row_colour : system_window_background) << row;
    }
    return marks;
  }
  void Click(int row, int shift = 0, int button = 1) {
    grid.Set_MouseRow(row);
    grid.MouseUp(button, shift, 0, 0);
    EXPECT_TRUE(grid.Redraw());
  }
};

TEST_F(Grid, Shows_In_Each_View_What_Its_Headers_Say) {
  New_Item entry;
  entry.item_class = item_class::journal;
  entry.subject = "Subject";
  entry.body = "Text";
  entry.end = 40001;
  entry.size = 1536;
  store.Add_Item(*store.Folder({"Journal"}), entry);
  Show("Journal", 0);
  Mark("Journal");
  struct Case {
    bool all_folders;
    int item_type;
    const char *headers, *cells;
  };
  const Case cases[] = {
      {true, 4, "|Folder|Type|Sender|Subject|Date|Size|Goes",
       "|Journal|Journal Entry|Text|Subject|2009-07-07|1.5 KB|will go"},
      {false, 0, "|Type|Sender|Subject|Date|Size|Goes",
       "|Journal Entry|Text|Subject|2009-07-07|1.5 KB|will go"},
      {false, 4, "|Type|Subject|Entry|Date|Size|Goes",
       "|Journal Entry|Subject|Text|2009-07-07|1.5 KB|will go"},
      {false, 3, "|Type|Subject|Date|Size|Goes", "|Journal Entry|Subject|2009-07-07|1.5 KB|will go"}};
  for (const Case& c : cases) {
    window.chkShowAllFolders.Set_Value(c.all_folders);
    columns.CurrentGridItemType = c.item_type;
    columns.Set_Grid_Columns();
    std::string headers, cells;
    ASSERT_EQ(grid.Picture_Column(), grid.Cols() - 1);
    for (int column = 2; column < grid.Cols(); ++column) {
      headers += "|" + grid.TextMatrix(0, column);
      cells += "|" + grid.TextMatrix(1, column);
    }
    EXPECT_EQ(headers, c.headers);
    EXPECT_EQ(cells, c.cells);
  }
  // Attachments have a column that is hidden at first, between sizes and what will go.
  window.mnuShowAttachments.Click();
  EXPECT_EQ(grid.TextMatrix(0, 6) + grid.TextMatrix(1, 6), "Attached");
  Record("Journal").Cached(1).HasAttachments = true;
  EXPECT_EQ(grid.TextMatrix(1, 6), "attachment");
  EXPECT_EQ(columns.Get_Sort_Column(Grid_Field::Attachments), 6);
  EXPECT_EQ(columns.Get_Sort_Field(7), Grid_Field::Will_Go);
  EXPECT_EQ(grid.Picture_Column(), 7);
  // Neither a date that is none nor what a run has deleted is to be read.
  Record("Journal").Cached(1).ItemDate = no_date;
  EXPECT_EQ(grid.TextMatrix(1, 4), "");
  Record("Journal").Cached(1).ItemClass = ItemData::deleted;
  EXPECT_EQ(grid.TextMatrix(1, 2) + grid.TextMatrix(1, 3), "");
}

TEST_F(Grid, Sorts_By_The_Header_And_Remembers) {
  Show("Inbox", 11);
  EXPECT_EQ(Column(4), "11 10 9 8 7 6 5 4 3 2 1") << "newest first";
  grid.Header_Click(4);
  EXPECT_EQ(Column(4), "1 10 11 2 3 4 5 6 7 8 9") << "as texts";
  grid.Header_Click(4);
  EXPECT_EQ(Column(4), "9 8 7 6 5 4 3 2 11 10 1");
  EXPECT_EQ(grid.Sort_Column(), 4);
  rows.Remove_All_Rows();
  rows.Add_All_Folders_Rows(Marker::None);
  EXPECT_EQ(Column(4), "9 8 7 6 5 4 3 2 11 10 1");
  window.mnuSortReverse.Click();
  EXPECT_EQ(Column(4).substr(0, 4), "1 10");
  window.mnuSortBy[5].Click();
  window.mnuSortBy[5].Click();
  EXPECT_EQ(Column(4), "1 2 3 4 5 6 7 8 9 10 11") << "chosen again, it stays";
}

TEST_F(Grid, Copies_What_Was_Picked_Or_Else_The_Current_Row) {
  Show("Inbox", 3);
  Record("Inbox").Cached(2).Subject = "of\ttwo\r\nlines";
  std::string copied;
  window.Set_Clipboard_Text = [&](const std::string& text) { copied = text; };
  grid.Set_Row(2);
  window.mnuCopyRows.Click();
  EXPECT_EQ(copied, "Mail\t\tof two  lines\t" + grid.TextMatrix(2, 5) + "\t\tstays\r\n");
  window.chkSelectByRow.Set_Value(1);
  window.mnuSelectAllRows.Click();
  window.mnuSelectRow.Click();
  window.mnuCopyRows.Click();
  EXPECT_EQ(std::count(copied.begin(), copied.end(), '\n'), 2);
  EXPECT_EQ(copied.find("two"), std::string::npos);
}

// What a run takes, and what a person has picked, is the same whatever the search hides.
TEST_F(Grid, A_Search_Narrows_What_Is_Shown_And_Never_What_Goes) {
  Show("Inbox", 12);
  Record("Inbox").Cached(2).Subject = "Z\u00e4hler offen";
  Record("Inbox").Cached(5).SenderOrText = "an offer";
  Mark("Inbox");
  rows.Change_Filtered_Rows();
  const auto find = [&](const char* text) {
    window.txtFind.Set_Text(text);
    window.txtFind.Change();
    std::string shown;
    for (int place = 1; place <= grid.Shown_Rows(); ++place) {
      EXPECT_EQ(grid.Place_Of(grid.Row_At_Place(place)), place);
      shown += std::to_string(grid.Row_At(grid.Row_At_Place(place)).item) + " ";
    }
    EXPECT_EQ(app.planner.Numbers().total.items, 12) << text;
    return shown;
  };
  const std::pair<const char*, const char*> cases[] = {
      {"z\u00c4HLER", "2 "}, {"of", "5 2 "}, {"MAIL off", "5 2 "},
      {"off an", "5 "},      {"nobody", ""}, {"  ", "12 11 10 9 8 7 6 5 4 3 2 1 "}};
  for (const auto& [text, shown] : cases) EXPECT_EQ(find(text), shown) << text;
  find("off");
  EXPECT_EQ(window.lblFound.Caption(), "2 of 12 shown; what will go stays the same");
  // Rows keep their places when they are sorted, and new ones are looked at.
  grid.Header_Click(4);
  EXPECT_EQ(grid.Shown_Rows(), 2);
  rows.Remove_All_Rows();
  rows.Add_All_Folders_Rows(Marker::None);
  EXPECT_EQ(grid.Shown_Rows(), 2);
  // Nobody picks by hand what is out of sight.
  window.txtFind.Set_Text("");
  window.txtFind.Change();
  window.chkSelectByRow.Set_Value(1);
  window.txtFind.Set_Text("off");
  window.txtFind.Change();
  window.mnuSelectAllRows.Click();
  EXPECT_EQ(app.planner.Numbers().total.items, 2);
  window.txtFind.Set_Text("");
  window.txtFind.Change();
  EXPECT_EQ(app.planner.Numbers().total.items, 2);
}

TEST_F(Grid, The_Preview_Shows_What_Is_Known_And_Then_The_Text) {
  New_Item mail;
  mail.subject = "Photos";
  mail.sender = "Anna";
  mail.body = "Here they are.";
  store.Add_Item(*store.Folder({"Inbox"}), mail);
  Show("Inbox", 0);
  const auto look = [&] { grid.Row_Shown(), grid.Row_Rests(); };
  grid.Set_Row(1);
  look();
  EXPECT_EQ(window.txtPreview.Text(), "") << "it is off";
  window.mnuPreview.Click();
  EXPECT_NE(window.txtPreview.Text().find("Photos\r\nMail from Anna"), std::string::npos);
  EXPECT_NE(window.txtPreview.Text().find("Here they are."), std::string::npos);
  // An item that cannot be read shows what is known, without a message.
  window.mnuPreview.Click();
  Fail("NameSpace.GetItemFromID");
  window.mnuPreview.Click();
  EXPECT_TRUE(window.txtPreview.Text().starts_with("Photos"));
  EXPECT_EQ(window.txtPreview.Text().find("Here they are."), std::string::npos);
  grid.Set_Row(0);
  look();
  EXPECT_TRUE(window.txtPreview.Text().starts_with("No item."));
}

TEST_F(Grid, Says_Once_That_It_Is_Full) {
  grid.Set_Capacity(151);
  Expect_Message(
      "Insufficient memory to display all selected items.\r\n"
      "Select fewer folders or change Screen Options to diplay fewer items.");
  Show("Inbox", 350);
  EXPECT_EQ(grid.Rows(), 151);
  EXPECT_TRUE(Record("Inbox").Loaded);
}

TEST_F(Grid, Marks_Rows_By_Mouse) {
  Show("Inbox", 8);
  Click(3);
  EXPECT_EQ(Marks(), "00000000") << "the option is off";
  window.chkSelectByRow.Set_Value(1);
  struct Case {
    int row, shift, button;
    const char* marks;
  };
  const Case clicks[] = {{4, 1, 1, "00010000"}, {5, 0, 1, "00001000"}, {2, 1, 1, "01111000"},
                         {8, 1, 1, "00001111"}, {8, 2, 1, "00001110"}, {1, 2, 1, "10001110"},
                         {2, 1, 1, "11000000"}, {3, 0, 2, "11000000"}, {9, 0, 1, "11000000"}};
  for (const Case& c : clicks) {
    Click(c.row, c.shift, c.button);
    EXPECT_EQ(Marks(), c.marks) << c.row << " " << c.shift;
  }
  // A Shift-click does not start where another item stands by now.
  grid.Header_Click(5);
  Click(2, 1);
  EXPECT_EQ(Marks(), "01000000");
  EXPECT_EQ(app.planner.Numbers().total.items, 1);
}

TEST_F(Grid, Marks_Deleted_Items_For_Good_Only) {
  Add_Items(store.Folder({"Deleted Items"}), 1);
  Add_Items(store.Folder({"Tasks"}), 1, item_class::task);
  Add_Items(store.Folder({"Deleted Items"}), 2);
  Show("Inbox", 1);
  for (const char* name : {"Deleted Items", "Tasks", "Inbox"}) Mark(name);
  window.chkShowAllFolders.Set_Value(1);
  window.chkSelectByRow.Set_Value(1);
  ASSERT_EQ(Column(5), "5 4 3 2 1");
  Click(1, 0);
  EXPECT_EQ(Marks(), "10000");
  Expect_Message("Cannot select \"Deleted Items\" items unless Permanent Delete is marked");
  Click(3, 1);
  EXPECT_EQ(Marks(), "10000");
  Expect_Message("Cannot select items in \"Deleted Items\" folder unless Permanent delete is marked.");
  Click(4, 1);
  EXPECT_EQ(Marks(), "10010");
  window.chkPermanentDelete.Set_Value(1);
  Click(4, 1);
  EXPECT_EQ(Marks(), "11110");
}

TEST_F(Grid, Refuses_Picking_Rows_Until_They_Are_There) {
  Show("Inbox", 3);
  Record("Inbox").Loaded = false;
  const std::string refusal =
      "Cannot use \"Select By Row\" until folder is completely loaded (appears black in the Folder Tree).";
  Expect_Message(refusal);
  window.chkSelectByRow.Set_Value(1);
  EXPECT_FALSE(window.chkSelectByRow.Checked());
  Record("Inbox").Loaded = true;
  window.chkSelectByRow.Set_Value(1);
  Click(2);
  Record("Inbox").Loaded = false;
  Expect_Message(refusal);
  Click(3);
  Mark("Inbox");
  Expect_Message(
      "Cannot select or use \"Show All Seleted Folders\" and \"Select By Row\" until all selected "
      "folders have been loaded.");
  window.chkShowAllFolders.Set_Value(1);
  EXPECT_FALSE(window.chkShowAllFolders.Checked());
  EXPECT_EQ(Marks(), "010") << "what was picked stays picked";
}

TEST_F(Grid, Keeps_What_Was_Picked_Whatever_Filter_Changes) {
  Show("Inbox", 3);
  Mark("Inbox");
  rows.Change_Folder_Rows(Node("Inbox"));
  window.chkShowSelectedItems.Set_Value(0);
  // Picking rows needs every row; what comes is not picked yet.
  window.chkSelectByRow.Set_Value(1);
  EXPECT_EQ(Marks(), "000");
  Click(2);
  window.chkSelectSubject.Set_Value(1);
  window.txtSelectSubject.Set_Text("3");
  window.txtSelectSubject.Validate();
  EXPECT_EQ(Marks(), "010");
  EXPECT_TRUE(window.cmdRun.Enabled());
}

TEST_F(Grid, Opens_The_Item_That_The_Row_Shows) {
  Show("Inbox", 9);
  const std::string shown = Record("Inbox").Cached(5).EntryID, last = Record("Inbox").Cached(1).EntryID;
  const auto press = [&](int row) {
    grid.Set_Row(row);
    grid.MouseDown(1);
    grid.Set_MouseRow(row);
  };
  press(5);
  grid.Set_Row(9);
  grid.KeyPress(13);
  EXPECT_EQ(outlook.displayed, std::vector{last}) << "the row that the keys have gone to";
  // Others went from in front of it meanwhile.
  store.Folder({"Inbox"})->Items()->Remove(1);
  grid.DblClick();
  EXPECT_EQ(outlook.displayed, (std::vector{last, shown}));
  press(9);
  Expect_Message("Item could not be retrieved");
  grid.DblClick();
  press(4);
  Record("Inbox").Cached(6).ItemClass = ItemData::deleted;
  grid.DblClick();
  EXPECT_EQ(outlook.displayed.size(), 2U);
}

TEST_F(Grid, Tells_How_Much_Is_Selected) {
  const auto shown = [&] {
    rows.Display_Selected_Items_Total();
    return window.sbStatusBar.Panel_Text(3);
  };
  Show("Inbox", 3);
  Mark("Inbox");
  Record("Inbox").Cached(1).Size = 1500;
  Record("Inbox").Cached(2).Size = 100;
  Record("Inbox").Judged = {};
  EXPECT_EQ(shown(), "Total Selected:  3 (1.6 KB)");
}

// The hint speaks of the folders in view alone.
TEST_F(Grid, Says_Why_The_List_Is_Empty) {
  const auto hint = [&] {
    rows.Follow_Choice();
    return grid.Empty_Text();
  };
  Show("Inbox", 3);
  Open("Tasks");
  rows.Change_Folder_Rows(Node("Tasks"));
  window.chkShowAllFolders.Set_Value(1);
  EXPECT_EQ(hint(), "Tick a folder in the tree to choose its items.");
  Mark("Inbox");
  Mark("Tasks");
  window.chkShowUnselectedItems.Set_Value(0);
  window.chkSelectSubject.Set_Value(1);
  window.txtSelectSubject.Set_Text("none of them");
  window.txtSelectSubject.Validate();
  EXPECT_EQ(hint(), "No item to show. Of 3 items in the ticked folders:\r\n3 have another subject");
  window.chkShowAllFolders.Set_Value(0);
  EXPECT_EQ(hint(), "The current folder holds no items.");
}

}  // namespace
}  // namespace tidyfold
