// The program over a store in memory whose calls can be made to fail, entered below its start-up: tests call
// the procedures of single floors.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "doubles/surroundings.h"
#include "stores/faulty/faulty_automation.h"
#include "stores/memory/memory_store.h"

namespace tidyfold {

class Core_Window : public testing::Test, protected Test_Surroundings {
 protected:
  Core_Window() {
    errors.Trap_Errors = true;
    window.frmRemoveItems.Load();
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
  void Expect_Report(const std::string& part, std::function<void()> while_open = {}) {
    box.Expect(part, Buttons::OK_Only, Answer::OK, std::move(while_open));
    box.Expect("", Buttons::OK_Only, Answer::OK);
  }

  const Automation_Error fault{automation_error::busy, "Planned.", "Test"};
  MainWindow window;
  TreeView& tree = window.trvFolders;
  FlexGrid& grid = window.grdItems;
  Memory_Outlook outlook;
  Memory_Store& store = outlook.Add_Store("Personal");
  Fault_Plan plan;
  Faulty_Automation automation{outlook, plan};
  App app{window, Around(automation)};
  Error_Handler& errors = app.errors;
  FolderData_Array& records = app.records;
  Outlook_Session& session = app.session;
  Folder_Tree& folder_tree = app.folder_tree;
  Deleted_Items_Folders& deleted_items = app.deleted_items;
  Item_Cache& cache = app.cache;
  Grid_Columns& columns = app.columns;
  Grid_Rows& rows = app.rows;
  int items_added = 0;
};

}  // namespace tidyfold
