// The built window under a real mouse and keyboard, from tick to summary, and what it leaves in the store.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>

#include "controls/text.h"
#include "desktop/window_driver.h"
#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/sample_store.h"

namespace tidyfold {
namespace {

using State = Window_Driver::State;

struct Kept_Item {
  std::string folder, subject;
  std::int32_t item_class;
  bool unread;
  bool operator==(const Kept_Item&) const = default;
};
using Content = std::map<std::string, Kept_Item>;  // by EntryID

void Read_Folder(MAPIFolder& folder, Content& content) {
  const Items_Ptr items = folder.Items();
  for (std::int32_t i = 1; i <= items->Count(); ++i) {
    const Item_Ptr item = items->Item(i);
    content[item->EntryID()] = {folder.Name(), item->Subject(), item->Class(), item->UnRead()};
  }
  const Folders_Ptr folders = folder.Folders();
  for (std::int32_t i = 1; i <= folders->Count(); ++i) Read_Folder(*folders->Item(i), content);
}

class Window : public testing::Test {
 protected:
  void SetUp() override {
    if (const std::string missing = Window_Driver::What_Is_Missing(); !missing.empty())
      GTEST_SKIP() << missing << " is not installed.";
    std::string name = (std::filesystem::temp_directory_path() / "tidyfold-window-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    store_ = folder_ / "sample.tidyfold";
  }
  void TearDown() override {
    window_.reset();
    if (!folder_.empty()) std::filesystem::remove_all(folder_);
  }

  void Make_Store(std::int32_t items) { ASSERT_TRUE(Make_Sample(store_, "Sample", items)); }
  // Opens the window on the store, or on what it had open last, and waits until everything is loaded.
  void Open(bool named = true) {
    window_.emplace(folder_, named ? std::vector{store_} : std::vector<std::filesystem::path>{});
    window_->Answer("All Folders Loaded", "Return");
  }
  void Quit() {
    window_->Key("ctrl+q");
    window_->Press("Quit Tidyfold?", "alt+y");
    EXPECT_EQ(window_->Program().Wait_For_End(), 0);
    window_.reset();
  }
  Content Read_Store() const {
    Content content;
    const auto store = Embedded_Store::Open(store_, Store_Mode::Read_Only);
    Read_Folder(*store->Top_Folder(), content);
    return content;
  }
  State Wait_For_Total(std::size_t total) {
    return window_->Wait("a total of " + std::to_string(total), [&](const State& state) {
      return state["panels"][2].get<std::string>().starts_with("Total Selected:  " + std::to_string(total));
    });
  }

  std::filesystem::path folder_, store_;
  std::optional<Window_Driver> window_;
};

TEST_F(Window, Cleans_Exactly_What_Was_Ticked_And_Filtered) {
  Make_Store(600);
  const Content before = Read_Store();
  Content expected = before;
  std::size_t chosen = 0;
  for (auto& [id, item] : expected) {
    if (item.folder != "Inbox" || item.unread || item.item_class != item_class::mail ||
        !Upper_Case(item.subject).starts_with("RE"))
      continue;
    item.folder = "Deleted Items";
    ++chosen;
  }
  ASSERT_GT(chosen, 1u);

  Open();
  window_->Tick_Folder("Inbox");
  window_->Tick_Option("chkSelectSubject");
  window_->Click("txtSelectSubject");
  window_->Type("re");
  window_->Tick_Option("chkSelectType");
  window_->Tick_Option("chkType(43)");
  Wait_For_Total(chosen);

  window_->Click("cmdRun");
  window_->Answer(std::to_string(chosen) + " items in 1 folder identified for cleaning.", "Return");
  window_->Answer(" " + std::to_string(chosen) + " items were moved to the \"Deleted Items\" folder.",
                  "Return");
  window_->Wait("the window to be at rest", [](const State& state) {
    return state["widgets"]["cmdRun"]["label"] == "&Clean" && state["boxes"].empty();
  });
  Quit();
  EXPECT_EQ(Read_Store(), expected);

  // Opened again, without being told what: the same store, as it is now.
  Open(false);
  const auto left = static_cast<std::size_t>(std::count_if(
      expected.begin(), expected.end(), [](const auto& entry) { return entry.second.folder == "Inbox"; }));
  window_->Wait("the Inbox without what was cleaned",
                [&](const State& state) { return state["rows"] == left; });
  Quit();
  EXPECT_EQ(Read_Store(), expected);
}

TEST_F(Window, Deletes_The_Picked_Rows_For_Good_And_No_Other) {
  Make_Store(600);
  const Content before = Read_Store();

  Open();
  window_->Click_Folder("Sent Items");
  window_->Tick_Option("chkPermanentDelete");
  window_->Tick_Option("chkSelectByRow");
  window_->Click_Row(2);
  window_->Click_Row(4, "shift");
  Wait_For_Total(3);
  window_->Click_Row(7, "ctrl");
  Wait_For_Total(4);
  window_->Click_Row(3, "ctrl");
  const State picked = Wait_For_Total(3);
  std::multiset<std::string> subjects;
  for (const State& row : picked["grid"]) {
    const auto number = &row - &picked["grid"][0] + 1;
    EXPECT_EQ(row["texts"][1] == "1", number == 2 || number == 4 || number == 7) << number;
    if (row["texts"][1] == "1") subjects.insert(row["texts"][4].get<std::string>());
  }

  window_->Click("cmdRun");
  window_->Answer("3 items identified for cleaning", "Return");
  // Enter is the safe answer.
  window_->Answer("Permanently delete items in selected folders?", "Return");
  window_->Wait_For_No_Box();
  window_->Click("cmdRun");
  window_->Answer("3 items identified for cleaning", "Return");
  window_->Answer("Permanently delete items in selected folders?", "alt+y");
  window_->Answer(" 3 items were deleted.", "Return");
  Quit();

  const Content after = Read_Store();
  std::multiset<std::string> gone;
  for (const auto& [id, item] : before) {
    if (after.contains(id)) {
      EXPECT_EQ(after.at(id), item);
    } else {
      EXPECT_EQ(item.folder, "Sent Items");
      gone.insert(item.subject);
    }
  }
  EXPECT_EQ(after.size(), before.size() - 3);
  EXPECT_EQ(gone, subjects);
}

TEST_F(Window, Works_Without_A_Mouse) {
  Make_Store(300);
  Open();
  // The tree has the keyboard; typing finds a folder, Space ticks it.
  window_->Click_Folder("Sample");
  window_->Type("notes");
  window_->Key("Escape");
  window_->Key("space");
  const auto is_ticked = [](const State& state) {
    for (const State& node : state["tree"])
      if (node["text"].get<std::string>().starts_with("Notes ")) return node["checked"].get<bool>();
    return false;
  };
  const State ticked = window_->Wait("Notes ticked", is_ticked);
  EXPECT_EQ(ticked["widgets"]["lblCurrentFolder"]["label"], "Current Folder: Notes");
  const std::size_t rows = ticked["rows"];
  ASSERT_GT(rows, 0u);

  window_->Key("alt+t");
  window_->Wait("the date filter on",
                [](const State& state) { return state["widgets"]["dtpCutoffDate"]["enabled"].get<bool>(); });
  window_->Key("alt+t");
  window_->Key("ctrl+u");
  window_->Wait("no folder ticked", [&](const State& state) { return !is_ticked(state); });

  // Esc and No leave everything as it is.
  window_->Key("ctrl+q");
  window_->Answer("Quit Tidyfold?", "Escape");
  window_->Wait_For_No_Box();
  EXPECT_TRUE(window_->Program().Running());
  Quit();
}

// Where the panes stand, from left to right; a pane that is closed has no width.
struct Panes {
  explicit Panes(const State& state)
      : tree(state, "trvFolders"),
        bar(state, "picSlider"),
        grid(state, "grdItems"),
        bar2(state, "picSlider2"),
        options(state, "frmOptions") {}
  // Each begins where its neighbour ends.
  bool Meet() const {
    return (tree.width == 0 || tree.left + tree.width == bar.left) && bar.left + bar.width == grid.left &&
           grid.left + grid.width == bar2.left && bar2.left + bar2.width == options.left;
  }
  struct Pane {
    Pane(const State& state, const char* name) {
      if (!state["widgets"].contains(name)) return;
      left = state["widgets"][name]["rectangle"][0];
      width = state["widgets"][name]["rectangle"][2];
    }
    int left = 0, width = 0;
  };
  Pane tree, bar, grid, bar2, options;
};

TEST_F(Window, The_Bars_Move_The_Panes) {
  Make_Store(50);
  Open();
  const auto wait = [&](const char* what, const std::function<bool(const Panes&)>& condition) {
    return Panes(window_->Wait(what, [&](const State& state) {
      const Panes panes(state);
      return panes.Meet() && condition(panes);
    }));
  };
  const Panes start = wait("the panes", [](const Panes& panes) { return panes.tree.width > 0; });
  window_->Drag("picSlider", 60);
  wait("a wider tree", [&](const Panes& now) {
    return now.tree.width == start.tree.width + 60 && now.grid.width == start.grid.width - 60;
  });
  window_->Drag("picSlider", -2000);
  wait("a closed tree",
       [&](const Panes& now) { return now.tree.width == 0 && now.bar.left == start.tree.left; });
  window_->Drag("picSlider", 200);
  const Panes open = wait("an open tree", [&](const Panes& now) { return now.tree.width == 200; });
  // The second bar makes the window narrower; the options keep their width.
  window_->Drag("picSlider2", -100);
  wait("a narrower window", [&](const Panes& now) {
    return now.grid.width == open.grid.width - 100 && now.options.width == open.options.width;
  });
  Quit();
}

TEST_F(Window, Closing_It_While_It_Loads_Ends_The_Program) {
  Make_Store(150000);  // so that loading takes longer than getting at the window
  const Content before = Read_Store();
  window_.emplace(folder_, std::vector{store_});
  window_->Wait("the window", [](const State& state) { return state["shown"].get<bool>(); });
  window_->Close_Window();
  EXPECT_EQ(window_->Program().Wait_For_End(), 0);
  EXPECT_EQ(Read_Store(), before);
}

}  // namespace
}  // namespace tidyfold
