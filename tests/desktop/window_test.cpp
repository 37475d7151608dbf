// The built window under real mouse and keyboard events, from tick to summary, and the store afterwards.
#include <fstream>
#include <iterator>
#include <set>

#include "base/text.h"
#include "desktop/window_fixture.h"
#include "runs/run_log.h"

namespace tidyfold {
namespace {

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
    item.path = "/Deleted Items";
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

  // Esc on the review leaves everything as it was; Enter begins.
  for (const char* const key : {"Escape", "Return"}) {
    window_->Click("cmdRun");
    window_->Answer(std::to_string(chosen) + " items in 1 folder identified for cleaning.", key);
    if (*key == 'E') Wait_For_Rest();
  }
  window_->Answer(" " + std::to_string(chosen) + " items were moved to the \"Deleted Items\" folder.",
                  "Return");
  Wait_For_Rest();
  Quit();
  EXPECT_EQ(Read_Store(), expected);

  // Opened again without arguments, it shows the same store.
  Open(false);
  const auto left = static_cast<std::size_t>(std::count_if(
      expected.begin(), expected.end(), [](const auto& entry) { return entry.second.folder == "Inbox"; }));
  window_->Wait("the Inbox without what was cleaned",
                [&](const State& state) { return state["rows"] == left; });
  Quit();
  EXPECT_EQ(Read_Store(), expected);
}

TEST_F(Window, Picks_Rows_By_Mouse_And_Keys_And_Deletes_No_Other) {
  Make_Store(300);
  const Content before = Read_Store();
  Open();
  window_->Click_Folder("Sent Items");
  window_->Tick_Option("chkPermanentDelete");
  window_->Tick_Option("chkSelectByRow");
  struct Step {
    int row;  // 0: none is clicked
    const char* key;
    std::size_t frame;  // the row with the keyboard focus afterwards
    const char* marks;  // of the first eight rows
    bool rest = false;  // whether the others are marked
  };
  const Step steps[] = {{3, "", 3, "00100000"},
                        {6, "shift", 6, "00111100"},
                        {1, "shift", 1, "11100000"},
                        {5, "ctrl", 5, "11101000"},
                        {2, "ctrl", 2, "10101000"},
                        {0, "Down", 3, "10101000"},
                        {0, "Down", 4, "10101000"},
                        {0, "space", 4, "00010000"},
                        {0, "shift+Down", 5, "00011000"},
                        {0, "ctrl+a", 5, "11111111", true},
                        {0, "Home", 1, "11111111", true},
                        {0, "ctrl+space", 1, "01111111", true},
                        {0, "shift+End", 0, "11111111", true},
                        {0, "Home", 1, "11111111", true},
                        {2, "", 2, "01000000"},
                        {4, "shift", 4, "01110000"},
                        {7, "ctrl", 7, "01110010"},
                        {3, "ctrl", 3, "01010010"}};
  const auto is_marked = [](const State& row) { return row["texts"][1] == "1"; };
  for (const Step& step : steps) {
    if (step.row > 0) window_->Click_Row(step.row, step.key);
    if (step.row == 0) window_->Key(step.key);
    window_->Wait(step.marks + std::string(" after ") + step.key, [&](const State& state) {
      const State& grid = state["grid"];
      bool holds = step.frame == 0 ? state["row"] == state["rows"] : state["row"] == step.frame;
      for (std::size_t row = 0; row < grid.size(); ++row)
        holds &= is_marked(grid[row]) == (row < 8 ? step.marks[row] == '1' : step.rest);
      return holds && grid.size() > 8;
    });
  }
  const State picked = Wait_For_Total(3);
  std::multiset<std::string> subjects;
  for (const State& row : picked["grid"])
    if (is_marked(row)) subjects.insert(row["texts"][4].get<std::string>());

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

TEST_F(Window, Opens_The_Item_Of_A_Row) {
  Make_Store(100);
  Open();
  window_->Click_Folder("Inbox");
  for (const bool by_key : {false, true}) {
    const int row = by_key ? 4 : 2;
    window_->Click_Row(row, "", by_key ? 1 : 2);
    if (by_key) window_->Key("Return");
    const State state =
        window_->Wait("the item", [](const State& now) { return now["beside"].contains("frmItem"); });
    EXPECT_EQ(state["beside"]["frmItem"]["title"],
              state["grid"][static_cast<std::size_t>(row - 1)]["texts"][4]);
    window_->Key_To_Other("Escape");
    window_->Wait("no item", [](const State& now) { return now["beside"].empty(); });
  }
  Quit();
}

TEST_F(Window, Options_Force_And_Refuse_One_Another) {
  Make_Store(100);
  Open();
  const std::string shown = "ShowSelectedItems ShowUnselectedItems";
  const std::string forced = " PermanentDelete SelectUnread " + shown;
  const char *unmark = "There is currently 1 marked folder that will be deleted.  Unmark it?", *none = "";
  struct Case {
    const char *first, *folder;                              // ticked in this order
    const char* option;                                      // turned then
    std::vector<std::pair<const char*, const char*>> boxes;  // and the keys that answer them
    std::string on;
  };
  const Case cases[] = {
      {none, "Inbox", "Turbo", {}, forced.substr(1) + " Turbo"},
      {"DeleteFolders", none, "Turbo", {}, "MarkSubFolders" + forced + " Turbo"},
      {"Turbo", none, "DeleteFolders", {}, "DeleteFolders MarkSubFolders" + forced},
      {none,
       "Inbox",
       "DeleteFolders",
       {{unmark, "alt+n"}, {"Cannot mark \"Delete Folders\" while default folders are selected.", "Return"}},
       shown},
      {none, "Inbox", "DeleteFolders", {{unmark, "alt+y"}}, "DeleteFolders MarkSubFolders" + forced}};
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    const std::string folder = c.folder;
    if (*c.first != 0) window_->Tick_Option("chk" + std::string(c.first));
    if (!folder.empty()) window_->Tick_Folder(folder);
    window_->Wait("the folder ticked",
                  [&](const State& state) { return folder.empty() == Ticked(state).empty(); });
    window_->Click("chk" + std::string(c.option));
    for (const auto& [words, key] : c.boxes) window_->Answer(words, key);
    window_->Wait("the options " + c.on, [&](const State& state) {
      const bool unmarked = !c.boxes.empty() && c.boxes.front().second == std::string("alt+y");
      return On(state) == c.on && Ticked(state).empty() == (folder.empty() || unmarked);
    });
    window_->Key("ctrl+u");
    window_->Key("ctrl+r");
    window_->Wait("nothing chosen",
                  [&](const State& state) { return Ticked(state).empty() && On(state) == shown; });
  }
  Quit();
}

TEST_F(Window, Asks_Before_It_Takes_Everything) {
  Make_Store(400);
  Content expected = Read_Store();
  Open();
  const auto run = [&](const char* option, const char* folder, const char* count, const char* question,
                       const char* summary) {
    window_->Tick_Option(option);
    window_->Tick_Folder(folder);
    for (const bool yes : {false, true}) {
      window_->Click("cmdRun");
      window_->Answer(count, "Return");
      window_->Answer(question, yes ? "alt+y" : "alt+n");
      if (yes) window_->Answer(summary, "Return");
      Wait_For_Rest();
    }
  };
  run("chkTurbo", "Notes", " in 1 folder identified for cleaning.",
      "Turbo selected.\r\nALL items in selected folders will be deleted.", " deleted.");
  window_->Key("ctrl+r");
  run("chkDeleteFolders", "Family", "identified for deletion.", "ALL selected FOLDERS and their content",
      " deleted.");
  Quit();
  std::erase_if(expected, [](const auto& entry) {
    return entry.second.folder == "Notes" || entry.second.path.find("/Family") != std::string::npos;
  });
  EXPECT_EQ(Read_Store(), expected);
}

TEST_F(Window, Works_Without_A_Mouse) {
  Make_Store(300);
  Open();
  // The tree has the keyboard; typing finds a folder, Space ticks it.
  window_->Click_Folder("Sample");
  window_->Type("notes");
  window_->Key("Escape");
  window_->Xdotool({"keydown", "space"});
  const auto is_ticked = [](const State& state) {
    for (const State& node : state["tree"])
      if (node["text"].get<std::string>().starts_with("Notes ")) return node["checked"].get<bool>();
    return false;
  };
  // All of it with the key still down.
  const State ticked = window_->Wait("Notes ticked and current", [&](const State& state) {
    return is_ticked(state) && state["widgets"]["lblCurrentFolder"]["label"] == "Current Folder: Notes";
  });
  const std::size_t rows = ticked["rows"];
  ASSERT_GT(rows, 0u);
  window_->Xdotool({"keyup", "space"});
  // What may not be ticked is refused with the key still down.
  window_->Type("deleted");
  window_->Key("Escape");
  window_->Xdotool({"keydown", "space"});
  window_->Wait_For_Box("Deleted Items");
  window_->Xdotool({"keyup", "space"});
  window_->Answer("Deleted Items", "Return");

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

TEST_F(Window, Right_Clicks_Offer_And_Choose_Nothing_And_F6_Goes_Round) {
  Make_Store(300);
  Open();
  // Opens the menu, goes to the entry and returns its help in the status bar.
  const auto menu_says = [&](const State& rectangle, int x, const char* key) {
    const int left = rectangle[0], top = rectangle[1], height = rectangle[3];
    window_->Wait("the keyboard", [](const State& state) { return state["keyboard"] == "window"; });
    window_->Xdotool({"mousemove", std::to_string(left + x), std::to_string(top + height / 2), "click", "3"});
    window_->Wait("a menu", [](const State& state) { return state["keyboard"] == "menu"; });
    window_->Xdotool({"key", "Down"});
    const State said = window_->Wait(
        "its help", [](const State& state) { return !state["said"].get<std::string>().empty(); });
    window_->Xdotool({"key", key});
    window_->Wait("no menu", [](const State& state) { return state["keyboard"] == "window"; });
    return said["said"].get<std::string>() + (Ticked(said).empty() ? "" : " ticked");
  };
  const State start = window_->Wait("the tree", [](const State& now) { return now["tree"].size() > 3; });
  const State& notes = *std::find_if(start["tree"].begin(), start["tree"].end(), [](const State& node) {
    return node["text"].get<std::string>().starts_with("Notes ");
  });
  constexpr int on_its_box = 8;
  EXPECT_EQ(menu_says(notes["rectangle"], on_its_box, "Escape"), "Tick the current folder");
  window_->Wait("Notes current", [](const State& now) {
    return now["widgets"]["lblCurrentFolder"]["label"] == "Current Folder: Notes";
  });
  EXPECT_EQ(menu_says(notes["rectangle"], on_its_box, "Return"), "Tick the current folder");
  window_->Wait("Notes ticked", [](const State& now) { return Ticked(now).starts_with("Notes "); });
  window_->Key("ctrl+shift+m");
  window_->Wait("no folder ticked", [](const State& now) { return Ticked(now).empty(); });

  window_->Tick_Option("chkSelectByRow");
  window_->Click_Row(2);
  window_->Click_Row(4, "shift");
  const State rows = Wait_For_Total(3)["grid"];
  EXPECT_EQ(menu_says(rows[0]["rectangle"], 40, "Escape"), "Open the item of the current row");
  EXPECT_EQ(window_->Wait("the first row", [](const State& now) { return now["row"] == 1; })["grid"], rows);

  const char* const panes[] = {"picSlider2", "frmOptions", "trvFolders", "picSlider", "grdItems"};
  for (const char* const pane : panes) {
    window_->Key("F6");
    window_->Wait(pane, [&](const State& now) {
      return now["focus"] == pane ||
             (pane == std::string("frmOptions") && now["focus"] == "chkMarkSubFolders");
    });
  }
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
    const int grid_left = bar.left + bar.width;
    return (tree.width == 0 || tree.left + tree.width == bar.left) &&
           (grid.width == 0 || grid.left == grid_left) && grid_left + grid.width == bar2.left &&
           bar2.left + bar2.width == options.left;
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

TEST_F(Window, Runs_Shows_The_Items_Of_The_Chosen_Run_And_Saves_Them) {
  Make_Store(20);
  {
    Run_Log log(folder_ / ".local/state/tidyfold/runs.sqlite");
    Run_Header run;
    run.stores = {{"S1", "Sample", store_.string()}};
    Logged_Item note;
    note.folder.path = "Inbox";
    note.entry_id = "I1";
    note.subject = "a, b";
    for (const int items : {2, 3}) {
      log.Begin(run, 45000);
      for (int item = 1; item <= items; ++item) log.Set_Result(log.Note(note), Item_Result::Done);
      log.End({items, false, false}, 45000);
    }
  }
  Open();
  window_->Key("ctrl+l");
  const auto shows = [&](int items) {
    window_->Wait("two runs, and of the chosen one " + std::to_string(items), [&](const State& state) {
      const State widgets = state["beside"].value("frmRuns", State())["widgets"];
      return widgets.contains("grdRunItems") && widgets["grdRuns"]["rows"] == 2 &&
             widgets["grdRunItems"]["rows"] == items && state["keyboard"] == "other";
    });
  };
  shows(3);
  window_->Key_To_Other("Down");
  shows(2);
  window_->Key_To_Other("alt+s");
  window_->Wait("the file dialog", [](const State& state) { return state["keyboard"] == "files"; });
  window_->Xdotool({"key", "Return"});
  const std::filesystem::path file = folder_ / "run-1.csv";
  window_->Wait("the file", [&](const State&) {
    return std::filesystem::exists(file) && std::filesystem::file_size(file) > 100;
  });
  std::ifstream stream(file);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_EQ(text,
            "entry_id,folder,subject,date,done,result,reason\r\n"
            "I1,Inbox,\"a, b\",,moved,done,\r\nI1,Inbox,\"a, b\",,moved,done,\r\n");
  window_->Key_To_Other("Escape");
  window_->Wait("no other window", [](const State& state) { return state["beside"].empty(); });
  Quit();
}

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
  window_->Drag("picSlider", 2000);
  wait("a closed grid", [&](const Panes& now) { return now.grid.width == 0 && now.options.width > 0; });
  window_->Drag("picSlider", -2000);
  wait("a closed tree again", [&](const Panes& now) { return now.tree.width == 0; });
  window_->Drag("picSlider", 200);
  const Panes open = wait("an open tree", [&](const Panes& now) { return now.tree.width == 200; });
  // The second bar makes the window narrower; the options keep their width.
  window_->Drag("picSlider2", -100);
  wait("a narrower window", [&](const Panes& now) {
    return now.grid.width == open.grid.width - 100 && now.options.width == open.options.width;
  });
  window_->Drag("picSlider2", 2000);
  // It has also been moved to fit.
  wait("a window as wide as the screen", [&](const Panes& now) {
    return now.grid.width > open.grid.width && now.options.left + now.options.width < 1280;
  });
  window_->Drag("picSlider2", -2000);
  wait("a window as narrow as it gets", [&](const Panes& now) {
    return now.grid.width < open.grid.width - 100 && now.options.width == open.options.width;
  });
  Quit();
}

}  // namespace
}  // namespace tidyfold
