// The built window on a store of its own, and the content of that store.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "desktop/window_driver.h"
#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/sample_store.h"

namespace tidyfold {

using State = Window_Driver::State;

struct Kept_Item {
  std::string path, folder, subject;
  std::int32_t item_class;
  bool unread;
  bool operator==(const Kept_Item&) const = default;
};
using Content = std::map<std::string, Kept_Item>;  // by EntryID

inline void Read_Folder(MAPIFolder& folder, const std::string& path, Content& content) {
  const Items_Ptr items = folder.Items();
  for (std::int32_t i = 1; i <= items->Count(); ++i) {
    const Item_Ptr item = items->Item(i);
    content[item->EntryID()] = {path, folder.Name(), item->Subject(), item->Class(), item->UnRead()};
  }
  const Folders_Ptr folders = folder.Folders();
  for (std::int32_t i = 1; i <= folders->Count(); ++i)
    Read_Folder(*folders->Item(i), path + "/" + folders->Item(i)->Name(), content);
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
  // Opens the window on the store, or on the last ones if not named, and waits until everything is loaded.
  void Open(bool named = true) {
    window_.emplace(folder_, named ? std::vector{store_} : std::vector<std::filesystem::path>{});
    window_->Answer("All Folders Loaded", "Return");
  }
  void Open_And_Not_Wait() { window_.emplace(folder_, std::vector{store_}); }
  void Quit() {
    window_->Key("ctrl+q");
    window_->Press("Quit Tidyfold?", "alt+y");
    EXPECT_EQ(window_->Program().Wait_For_End(), 0);
    window_.reset();
  }
  Content Read_Store() const {
    Content content;
    const auto store = Embedded_Store::Open(store_, Store_Mode::Read_Only);
    Read_Folder(*store->Top_Folder(), "", content);
    return content;
  }
  State Wait_For_Total(std::size_t total) {
    return window_->Wait("a total of " + std::to_string(total), [&](const State& state) {
      return state["panels"][2].get<std::string>().starts_with("Total Selected:  " + std::to_string(total));
    });
  }

  void Wait_For_Rest() {
    window_->Wait("the window to be at rest", [](const State& state) {
      return state["widgets"]["cmdRun"]["label"] == "&Clean" && state["boxes"].empty();
    });
  }
  static std::string Ticked(const State& state) {
    std::string all;
    for (const State& node : state["tree"])
      if (node["checked"].get<bool>()) all += node["text"].get<std::string>() + " ";
    return all;
  }
  // The options that are ticked, in the order of their names, without "chk".
  static std::string On(const State& state) {
    std::string all;
    for (const auto& [name, widget] : state["widgets"].items())
      if (widget.contains("checked") && widget["checked"].get<bool>())
        all += (all.empty() ? "" : " ") + name.substr(3);
    return all;
  }

  std::filesystem::path folder_, store_;
  std::optional<Window_Driver> window_;
};

}  // namespace tidyfold
