// The whole program over stores in memory, with boxes that follow a script and yields that a test can use.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "doubles/surroundings.h"
#include "stores/faulty/faulty_automation.h"
#include "stores/memory/memory_store.h"

namespace tidyfold {

constexpr Answer OK = Answer::OK, Yes = Answer::Yes, No = Answer::No, Cancel = Answer::Cancel;

struct Window_Fixture : Test_Surroundings {
  // Where the program is to work on something else than the stores in memory, these are filled the same way
  // and tell the identifiers.
  struct Instead {
    Automation* outlook = nullptr;
    Store_Writer* store = nullptr;
  };
  const Instead instead;
  Memory_Outlook outlook;
  Fault_Plan plan;
  Faulty_Automation automation{instead.outlook != nullptr ? *instead.outlook : outlook, plan};
  MainWindow window;
  App app{window, Around(automation)};
  TreeView& tree = window.trvFolders;
  FlexGrid& grid = window.grdItems;

  explicit Window_Fixture(const std::string& steps = "", std::size_t stores = 1)
      : Window_Fixture(Instead(), steps, stores) {}
  explicit Window_Fixture(Instead instead_of_memory, const std::string& steps = "", std::size_t stores = 1)
      : instead(instead_of_memory) {
    while (outlook.Stores() < stores) outlook.Add_Store("Store " + std::to_string(outlook.Stores() + 1));
    Do(steps);
  }

  // What there is, and what a person does: "add Inbox/a; load; set Turbo SelectType; tick Inbox; row 5".
  // Options go by their names without "chk".
  void Do(const std::string& steps) {
    std::istringstream all(steps);
    for (std::string step; std::getline(all >> std::ws, step, ';');) {
      if (step.empty()) continue;
      const std::size_t blank = step.find(' ');
      const std::string verb = step.substr(0, blank), what = step.substr(blank + 1);
      const std::map<std::string, std::function<void()>> verbs = {
          {"add", [&] { Add(what.substr(0, what.rfind('/')), what.substr(what.rfind('/') + 1)); }},
          {"folder", [&] { Folder(what); }},
          // Its mark, which the tree finds when it is built; then by the menu.
          {"protected",
           [&] { protection.Set_Protected(Folder(what)->StoreID(), Folder(what)->EntryID(), true); }},
          {"protect", [&] { tree.Click_Node(Node(what)), tree.MouseUp(), window.mnuProtect.Click(); }},
          {"load",
           [&] {
             Expect({{"All Folders Loaded", OK}}), app.Form_Load(), box.Verify();
           }},
          {"set", [&] { Set(what, true); }},
          {"unset", [&] { Set(what, false); }},
          {"tick", [&] { tree.Tick(Node(what), true), tree.MouseUp(); }},
          {"untick", [&] { tree.Tick(Node(what), false), tree.MouseUp(); }},
          {"click", [&] { tree.Click_Node(Node(what)), tree.MouseUp(); }},
          {"row", [&] { Pick(std::stoi(what), 0); }},
          {"rows-to", [&] { Pick(std::stoi(what), 1); }},
          {"turn-row", [&] { Pick(std::stoi(what), 2); }},
          {"cut-off",
           [&] { window.dtpCutoffDate.Set_Value(std::stoi(what)), window.dtpCutoffDate.CloseUp(); }},
          // An option alone, without what its handler would force or refuse.
          {"force", [&] {
             std::function<void()> handler;
             Option(what).Click.swap(handler);
             Option(what).Set_Value(1);
             Option(what).Click.swap(handler);
           }}};
      verbs.at(verb)();
    }
  }
  CheckBox& Option(const std::string& name) {
    const auto found = std::find_if(window.controls.begin(), window.controls.end(),
                                    [&](Control* control) { return control->Name() == "chk" + name; });
    if (found == window.controls.end()) throw std::invalid_argument("no option: " + name);
    return dynamic_cast<CheckBox&>(**found);
  }
  void Set(const std::string& names, bool on) {
    std::istringstream all(names);
    for (std::string name; all >> name;) Option(name).Set_Value(on);
  }
  void Pick(int row, int shift) { grid.Set_MouseRow(row), grid.MouseUp(1, shift, 0, 0); }
  // The names of the options that are on, in tab order.
  std::string On() const {
    std::string all;
    for (const Control* control : window.controls)
      if (const auto* option = dynamic_cast<const CheckBox*>(control); option != nullptr && option->Checked())
        all += (all.empty() ? "" : " ") + option->Name().substr(3);
    return all;
  }

  // "Old/Deep" below the top folder, "2:Inbox" in the second store; what is missing is added.
  MAPIFolder_Ptr Folder(const std::string& path) {
    Memory_Store& store = outlook.Store(path.starts_with("2:") ? 2 : 1);
    MAPIFolder_Ptr folder = store.Top_Folder();
    std::istringstream names(path.starts_with("2:") ? path.substr(2) : path);
    for (std::string name; std::getline(names, name, '/');) {
      const Folders_Ptr below = folder->Folders();
      std::int32_t i = 1;
      while (i <= below->Count() && below->Item(i)->Name() != name) ++i;
      if (i > below->Count()) {
        if (instead.store != nullptr) instead.store->Add_Folder(*folder, name, item_type::mail);
        store.Add_Folder(*folder, name, item_type::mail);
      }
      folder = below->Item(i);
    }
    return folder;
  }
  // Return "store id entry id" of the last. A subject that begins with u makes the item unread.
  std::string Add(const std::string& path, const New_Item& item, int count = 1) {
    const MAPIFolder_Ptr folder = Folder(path);
    std::string id;
    while (--count >= 0) {
      if (instead.store != nullptr) instead.store->Add_Item(*folder, item);
      id = outlook.Store(path.starts_with("2:") ? 2 : 1).Add_Item(*folder, item);
    }
    return folder->StoreID() + " " + id;
  }
  std::string Add(const std::string& path, const std::string& subject, int count = 1) {
    New_Item item;
    item.subject = subject;
    item.unread = subject.starts_with("u");
    item.received = 44000.5;
    return Add(path, item, count);
  }
  int Node(const std::string& path) {
    if (path == "OUTLOOK") return 1;  // the root that stands for several stores
    const MAPIFolder_Ptr folder = Folder(path);
    const int node = tree.Find_Key("-:::-" + folder->EntryID() + "-:::-" + folder->StoreID());
    if (node == 0 && !path.empty()) throw std::invalid_argument("no node: " + path);
    return node == 0 ? 1 : node;
  }
  bool Checked(const std::string& path) { return tree.Checked(Node(path)); }
  const FolderData& Record(int node) const { return app.records[node]; }
  std::string Path(int node) const {
    const bool top = node == 1 || (tree.Parent(node) == 1 && Record(1).Folder == nullptr);
    return top ? "" : Path(tree.Parent(node)) + "/" + Record(node).FolderName;
  }

  // The boxes to come: whole texts with their answers. Clean shows them all.
  using Script = std::vector<std::pair<std::string, Answer>>;
  void Expect(const Script& script) {
    for (const auto& [text, answer] : script) box.Expect(Exact(text), Buttons_Of(text, answer), answer);
  }
  static Buttons Buttons_Of(const std::string& text, Answer answer) {
    if (text.find(" identified for ") != std::string::npos) return Buttons::OK_Cancel;
    if (text.find(" items in \"") != std::string::npos) return Buttons::Yes_No_Cancel;
    return answer == OK ? Buttons::OK_Only : Buttons::Yes_No;
  }
  void Clean(const Script& script) {
    Expect(script);
    window.cmdRun.Click();
    box.Verify();
  }

  // The path of every item, by "store id entry id", and of every folder, by "store id path".
  using Contents = std::map<std::string, std::string>;
  Contents Everything() {
    Contents all;
    const std::function<void(MAPIFolder&, const std::string&)> collect = [&](MAPIFolder& folder, auto& path) {
      const std::string store = folder.StoreID() + " ";
      all[store + path] = path;
      const Items_Ptr items = folder.Items();
      for (std::int32_t i = items->Count(); i >= 1; --i) all[store + items->Item(i)->EntryID()] = path;
      const Folders_Ptr folders = folder.Folders();
      for (std::int32_t i = folders->Count(); i >= 1; --i)
        collect(*folders->Item(i), path + "/" + folders->Item(i)->Name());
    };
    for (std::size_t i = 1; i <= outlook.Stores(); ++i)
      collect(instead.store != nullptr ? *instead.store->Top_Folder() : *outlook.Store(i).Top_Folder(), "");
    return all;
  }
  // Tree, records and rows show what the stores hold, once everything is loaded.
  void Expect_Agreement() {
    Contents loaded;
    std::set<std::string> rows, keys;
    const int current = grid.Rows() > 1 ? grid.RowData(1) : tree.Selected_Item();
    for (int node = 1; node <= tree.Upper_Bound(); ++node) {
      if (!tree.Exists(node)) continue;
      const FolderData& record = Record(node);
      EXPECT_TRUE(record.Loaded) << tree.Text(node);
      EXPECT_EQ(tree.Fore_Colour(node), loaded_colour) << tree.Text(node);
      if (record.Folder == nullptr) continue;
      const std::string store = record.Folder->StoreID() + " ";
      const std::string label = "Current Folder: " + record.FolderName;
      const bool is_current = node == current && window.lblCurrentFolder.Caption() == label;
      loaded[store + Path(node)] = Path(node);
      for (std::int32_t item = 1; item <= record.CachedCount; ++item) {
        loaded[store + record.Cached(item).EntryID] = Path(node);
        EXPECT_EQ(record.Folder->Items()->Item(item)->EntryID(), record.Cached(item).EntryID);
        if (window.chkShowAllFolders.Checked() ? tree.Checked(node) : is_current)
          keys.insert(Row_Key(node, item));
      }
    }
    EXPECT_EQ(loaded, Everything());
    for (int row = 1; row < grid.Rows(); ++row)
      EXPECT_TRUE(rows.insert(grid.TextMatrix(row, 0)).second) << "a row is doubled";
    EXPECT_TRUE(rows == keys || !window.chkShowSelectedItems.Checked()) << rows.size() << " rows";
  }
};

}  // namespace tidyfold
