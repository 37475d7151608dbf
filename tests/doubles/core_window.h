// Tree, cache, filters and grid over stores in memory whose calls can be made to fail: the window without the
// rules of marking and cleaning.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "cache/item_cache.h"
#include "doubles/fake_events.h"
#include "doubles/scripted_message_box.h"
#include "grid/item_display.h"
#include "grid/row_selection.h"
#include "stores/faulty/faulty_automation.h"
#include "stores/memory/memory_store.h"

namespace tidyfold {

class Core_Window : public testing::Test {
 protected:
  Core_Window() {
    errors.Trap_Errors = true;
    folder_tree.Set_Folder_Label = [this](int index) { labelled = index; };
    cache.In_View = [this](int folder) { return rows.In_View(folder); };
    cache.Add_Folder_Rows = [this](int folder) { rows.Add_Folder_Rows(folder, Marker::None); };
    cache.Remove_Folder_Rows = [this](int folder) { rows.Remove_Folder_Rows(folder); };
    cache.Set_Grid_Order = [this] { rows.Set_Grid_Order(); };
    cache.Display_Selected_Items_Total = [this] { rows.Display_Selected_Items_Total(); };
    filters.Change_Filtered_Rows = [this] { rows.Change_Filtered_Rows(); };
    filters.Enable_Command_Buttons = [] {};
    rows.Check_Select_By_Row = [this] { return selection.Check_Select_By_Row(); };
    selection.Check_Selected_Folders = [this] { return selected_folders_loaded; };
    selection.Enable_Check_Boxes = [] {};
    selection.Enable_Command_Buttons = [] {};
    filters.Wire();
    rows.Wire();
    selection.Wire();
    display.Wire();
    window.chkShowSelectedItems.Set_Value(1);
    window.chkShowUnselectedItems.Set_Value(1);
  }

  // With a name, makes that folder the one that the grid shows.
  void Build(std::string_view current = {}) {
    if (session.name_space == nullptr) session.Start_Outlook();
    folder_tree.Build_Folder_Tree();
    deleted_items.Assigne_Deleted_Items_Folders();
    columns.Set_Grid_Columns();
    if (!current.empty()) Open(current);
  }
  // The node of a folder, by the name that its record keeps.
  int Node(std::string_view name) const {
    for (int node = 1; node <= records.Upper_Bound(); ++node)
      if (tree.Exists(node) && records[node].FolderName == name) return node;
    return 0;
  }
  FolderData& Record(std::string_view name) { return records[Node(name)]; }
  void Open(std::string_view name) {
    tree.Set_Selected_Item(Node(name));
    rows.CurrentNodeIndex = Node(name);
  }
  void Mark(std::string_view name) { tree.Set_Checked(Node(name), true); }

  // Adds items named "1", "2", ... to a folder; a later one is newer by a day.
  std::string Add_Items(const MAPIFolder_Ptr& folder, int count, std::int32_t item_class = item_class::mail) {
    std::string last;
    for (int i = 0; i < count; ++i) {
      New_Item item;
      item.item_class = item_class;
      item.subject = std::to_string(++items_added);
      item.received = item.last_modified = item.end = 40000 + items_added;
      last = store.Add_Item(*folder, item);
    }
    return last;
  }
  // The texts of a column, top to bottom.
  std::string Column(int column) const {
    std::string all;
    for (int row = 1; row < grid.Rows(); ++row) all += (row > 1 ? " " : "") + grid.TextMatrix(row, column);
    return all;
  }
  // Every call of a member fails, for one item or folder or for all.
  void Fail(const std::string& member, const std::string& id = {}) {
    plan.Fail_Where(
        [=](const Store_Call& call) { return call.member == member && (id.empty() || call.entry_id == id); },
        fault);
  }
  void Expect_Message(std::string text) { box.Expect(Exact(std::move(text)), Buttons::OK_Only, Answer::OK); }
  // One failure, wherever it comes from: the report and the stack behind it.
  void Expect_Report(const std::string& part) {
    box.Expect(part, Buttons::OK_Only, Answer::OK);
    box.Expect("", Buttons::OK_Only, Answer::OK);
  }

  const Automation_Error fault{automation_error::busy, "Planned.", "Test"};
  Fake_Events events;
  Scripted_Message_Box box;
  MainWindow window;
  TreeView& tree = window.trvFolders;
  FlexGrid& grid = window.grdItems;
  Memory_Outlook outlook;
  Memory_Store& store = outlook.Add_Store("Personal");
  Fault_Plan plan;
  Faulty_Automation automation{outlook, plan};
  Error_Handler errors{box};
  FolderData_Array records;
  Outlook_Session session{automation, window, box, errors};
  Folder_Tree folder_tree{window, records, session, box, events, errors};
  Deleted_Items_Folders deleted_items{window, records, folder_tree, errors};
  Item_Cache cache{window, records, folder_tree, session, box, events, errors};
  Item_Filters filters{window, records, errors};
  Grid_Columns columns{window, records, errors};
  Selection_Total total{window, records, folder_tree, filters, errors};
  Grid_Rows rows{window, records, folder_tree, filters, columns, total, box, errors};
  Row_Selection selection{window, records, deleted_items, rows, box, errors};
  Item_Display display{window, records, session, box, errors};
  bool selected_folders_loaded = true;
  int labelled = 0, items_added = 0;
};

}  // namespace tidyfold
