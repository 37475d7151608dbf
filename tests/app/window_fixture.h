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

#include "app/app.h"
#include "doubles/fake_events.h"
#include "doubles/fixed_clock.h"
#include "doubles/scripted_message_box.h"
#include "marking/run_state.h"
#include "outlook/folder_tree.h"
#include "stores/faulty/faulty_automation.h"
#include "stores/memory/memory_store.h"

namespace tidyfold {

constexpr Answer OK = Answer::OK, Yes = Answer::Yes, No = Answer::No, Cancel = Answer::Cancel;

// Runs an action in every box, after the script has had its say.
class Watched_Message_Box : public Scripted_Message_Box {
 public:
  std::function<void(int number)> on_box;  // counts from 1
  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override {
    const Answer answer = Scripted_Message_Box::Show(text, buttons, icon, title);
    if (on_box) on_box(static_cast<int>(Boxes().size()));
    return answer;
  }
};

struct Window_Fixture {
  Memory_Outlook outlook;
  Fault_Plan plan;
  Faulty_Automation automation{outlook, plan};
  MainWindow window;
  Watched_Message_Box box;
  Fake_Events events;
  Fixed_Clock clock;  // 2023-03-15
  App app{window, automation, box, events, clock};
  TreeView& tree = window.trvFolders;

  explicit Window_Fixture(std::size_t stores = 1) {
    for (std::size_t store = 1; store <= stores; ++store) outlook.Add_Store("Store " + std::to_string(store));
  }

  // "Projects/Alpha" below the store's top folder; what is missing is added.
  MAPIFolder_Ptr Folder(const std::string& path, std::size_t store = 1) {
    MAPIFolder_Ptr folder = outlook.Store(store).Top_Folder();
    std::istringstream names(path);
    for (std::string name; std::getline(names, name, '/');) {
      const Folders_Ptr below = folder->Folders();
      std::int32_t i = 1;
      while (i <= below->Count() && below->Item(i)->Name() != name) ++i;
      folder = i <= below->Count() ? below->Item(i)
                                   : outlook.Store(store).Add_Folder(*folder, name, item_type::mail);
    }
    return folder;
  }
  std::string Add(const std::string& path, const std::string& subject, bool unread = false) {
    New_Item item;
    item.subject = subject;
    item.unread = unread;
    item.received = 44000.5;
    return outlook.Store(1).Add_Item(*Folder(path), item);
  }
  void Add_Many(const std::string& path, int count, std::size_t store = 1) {
    const MAPIFolder_Ptr folder = Folder(path, store);
    for (int number = 0; number < count; ++number) outlook.Store(store).Add_Item(*folder, New_Item{});
  }

  // The boxes to come: whole texts with their answers.
  using Script = std::vector<std::pair<std::string, Answer>>;
  void Expect(const Script& script) {
    for (const auto& [text, answer] : script)
      box.Expect(Exact(text), answer == OK ? Buttons::OK_Only : Buttons::Yes_No, answer);
  }
  void Load() {
    Expect({{"All Folders Loaded", OK}});
    app.Form_Load();
    box.Verify();
  }
  void Clean(const Script& script) {
    Expect(script);
    window.cmdRun.Click();
    box.Verify();
  }

  // Option boxes by their names without "chk", parted by blanks.
  void Set(const std::string& names, int value = 1) {
    std::istringstream all(names);
    for (std::string name; all >> name;) {
      for (Control* control : window.controls)
        if (control->Name() == "chk" + name) dynamic_cast<CheckBox&>(*control).Set_Value(value);
    }
  }
  // Those that are on, in tab order.
  std::string On() const {
    std::string all;
    for (const Control* control : window.controls) {
      const auto* option = dynamic_cast<const CheckBox*>(control);
      if (option != nullptr && option->Checked()) all += (all.empty() ? "" : " ") + option->Name().substr(3);
    }
    return all;
  }

  int Node(const std::string& path, std::size_t store = 1) {
    if (path.empty() && outlook.Stores() == 1) return 1;
    const MAPIFolder_Ptr folder = Folder(path, store);
    return tree.Find_Key("-:::-" + folder->EntryID() + "-:::-" + folder->StoreID());
  }
  bool Checked(const std::string& path) { return tree.Checked(Node(path)); }
  void Tick(int node, bool checked = true) {
    tree.Tick(node, checked);
    tree.MouseUp();
  }
  void Tick(const std::string& path, bool checked = true) { Tick(Node(path), checked); }
  void Click(const std::string& path) {
    tree.Click_Node(Node(path));
    tree.MouseUp();
  }
  // Shift 0 picks the row alone, 1 all from the one before to it, 2 turns it.
  void Pick(int row, int shift = 0) {
    window.grdItems.Set_MouseRow(row);
    window.grdItems.MouseUp(1, shift, 0, 0);
  }
  const FolderData& Record(int node) const { return app.Folder_Data()[node]; }
  const GridRow& Row(int row) const { return window.grdItems.Row_At(row); }
  std::string Path(int node) const {
    const bool top = node == 1 || (tree.Parent(node) == 1 && Record(1).Folder == nullptr);
    return top ? "" : Path(tree.Parent(node)) + "/" + Record(node).FolderName;
  }

  // The path of every item, by "store id entry id", and of every folder, by "store id path".
  using Contents = std::map<std::string, std::string>;
  Contents Everything() {
    Contents all;
    for (std::size_t store = 1; store <= outlook.Stores(); ++store)
      Collect(*outlook.Store(store).Top_Folder(), "", all);
    return all;
  }

  // Tree, records and rows show what the stores hold, once everything is loaded.
  void Expect_Agreement() {
    Contents loaded;
    std::size_t in_view = 0;
    const std::string label = window.lblCurrentFolder.Caption();
    const int current = window.grdItems.Rows() > 1 ? Row(1).row_data : tree.Selected_Item();
    for (int node = 1; node <= tree.Upper_Bound(); ++node) {
      if (!tree.Exists(node)) continue;
      const FolderData& record = Record(node);
      EXPECT_TRUE(record.Loaded && tree.Fore_Colour(node) == loaded_colour) << tree.Text(node);
      const bool is_current = node == current && label == "Current Folder: " + record.FolderName;
      if (window.chkShowAllFolders.Checked() ? tree.Checked(node) : is_current)
        in_view += static_cast<std::size_t>(record.CachedCount);
      if (record.Folder == nullptr) continue;
      const std::string store = record.Folder->StoreID() + " ";
      loaded[store + Path(node)] = Path(node);
      for (std::int32_t item = 1; item <= record.CachedCount; ++item) {
        const std::string& entry_id = record.Cached(item).EntryID;
        loaded[store + entry_id] = Path(node);
        EXPECT_EQ(record.Folder->Items()->Item(item)->EntryID(), entry_id) << tree.Text(node);
      }
    }
    EXPECT_EQ(loaded, Everything());
    std::set<std::string> rows;
    for (int row = 1; row < window.grdItems.Rows(); ++row) {
      rows.insert(window.grdItems.TextMatrix(row, 0));
      EXPECT_LE(Row(row).item, Record(Row(row).row_data).CachedCount);
    }
    EXPECT_EQ(rows.size() + 1, static_cast<std::size_t>(window.grdItems.Rows())) << "a row is doubled";
    const bool all_kinds = On().find("ShowSelectedItems ShowUnselectedItems") != std::string::npos;
    EXPECT_TRUE(!all_kinds || rows.size() == in_view) << rows.size() << " rows, " << in_view << " in view";
  }

 private:
  static void Collect(MAPIFolder& folder, const std::string& path, Contents& all) {
    all[folder.StoreID() + " " + path] = path;
    for (std::int32_t i = 1; i <= folder.Items()->Count(); ++i)
      all[folder.StoreID() + " " + folder.Items()->Item(i)->EntryID()] = path;
    for (std::int32_t i = 1; i <= folder.Folders()->Count(); ++i)
      Collect(*folder.Folders()->Item(i), path + "/" + folder.Folders()->Item(i)->Name(), all);
  }
};

}  // namespace tidyfold
