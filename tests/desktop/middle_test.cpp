// Commands during loading and during a run.
#include "desktop/window_fixture.h"

namespace tidyfold {
namespace {

bool Far_Along(const State& state) {
  return state["shown"].get<bool>() && state["done"] > state["to_do"].get<std::int64_t>() / 5;
}
bool Under_Way(const State& state) {
  return state["to_do"] > 0;
}

class Middle : public Window {
 protected:
  // Waits for the progress of long work to change.
  void Wait_For_Change(const char* what, const State& was, bool further) {
    window_->Wait(what, [&](const State& now) {
      return now["boxes"].empty() && (!Under_Way(now) || (now["done"] > was["done"]) == further);
    });
  }
};

TEST_F(Middle, Of_Loading) {
  Make_Store(120000);
  const Content before = Read_Store();
  Open_And_Not_Wait();
  for (const char* const refresh : {"F5", "ctrl+F5"}) {
    const State state = window_->Key_In_The_Middle("loading", Far_Along, refresh);
    Wait_For_Change("loading from further back", state, false);
  }
  for (const char* const answer : {"Escape", "alt+n"}) {
    const State state = window_->Key_In_The_Middle("loading", Under_Way, "ctrl+q");
    EXPECT_TRUE(Under_Way(window_->Wait_For_Box("Quit Tidyfold?")));
    window_->Answer("Quit Tidyfold?", answer);
    Wait_For_Change("loading to go on", state, true);
  }
  // One message for all passes.
  EXPECT_EQ(window_->Wait_For_Box("All Folders Loaded")["boxes_closed"], 2);
  window_->Answer("All Folders Loaded", "Return");
  // Quitting during loading.
  for (const bool by_menu : {true, false}) {
    if (by_menu) {
      window_->Key("F5");
      window_->Key_In_The_Middle("loading", Far_Along, "ctrl+q");
      window_->Press("Quit Tidyfold?", "alt+y");
    } else {
      Open_And_Not_Wait();
      window_->Key_In_The_Middle("loading", Far_Along, "alt+F4");
    }
    EXPECT_EQ(window_->Program().Wait_For_End(), 0);
  }
  EXPECT_EQ(Read_Store(), before);
}

TEST_F(Middle, Of_A_Run) {
  Make_Store(100000);
  const Content before = Read_Store();
  Open();
  const auto start = [&] {
    window_->Tick_Option("chkPermanentDelete");  // off again after each run
    window_->Tick_Folder("Inbox");
    window_->Click("cmdRun");
    window_->Answer("identified for cleaning", "Return");
    window_->Answer("Permanently delete items in selected folders?", "alt+y");
  };
  // Asks twice; the run continues in between.
  const auto ask = [&](const char* key, const char* question) {
    const State first = window_->Key_In_The_Middle("a run", Under_Way, key);
    window_->Press(question, "alt+n");
    const auto is_further = [&](const State& now) {
      return Under_Way(now) && now["done"] > first["done"] && now["boxes"].empty();
    };
    window_->Key_In_The_Middle("the run going on", is_further, key);
    window_->Press(question, "alt+y");
  };
  start();
  ask("Escape", "Quit processing records?");
  window_->Answer("items were deleted.", "Return");
  Wait_For_Rest();
  start();
  ask("ctrl+q", "Quit Tidyfold?");
  EXPECT_EQ(window_->Program().Wait_For_End(), 0);
  const Content after = Read_Store();
  EXPECT_LT(after.size(), before.size());
  for (const auto& [id, item] : before) {
    if (!after.contains(id)) {
      EXPECT_EQ(item.folder, "Inbox") << item.path;
      EXPECT_FALSE(item.unread) << item.path;
    } else {
      EXPECT_EQ(after.at(id), item);
    }
  }
}

}  // namespace
}  // namespace tidyfold
