// What a changed filter, a tick and sorting cost on a million items in twenty folders, beside the same work
// done bare: a loop over the records with the comparisons written out, std::sort over the same texts.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "app/app.h"
#include "base/text.h"
#include "stores/sqlite/embedded_outlook.h"

namespace tidyfold {
namespace {

constexpr int folder_count = 20;
constexpr std::int32_t items_in_folder = 50'000, sorted_items = 100'000;

class No_Message_Box : public Message_Box {
 public:
  Answer Show(const std::string& text, Buttons, Icon, const std::string&) override {
    throw std::runtime_error("A message in the middle of a measurement: " + text);
  }
};

class No_Events : public Events {
 public:
  void Do_Events() override {}
};

class No_Clock : public Clock {
 public:
  Date Today() const override { return 45'000; }
  Date Now() const override { return 45'000; }
};

class Default_Limits : public Deleted_Items_Limits {
 public:
  std::int32_t Limit(const std::string&) override { return default_deleted_items_limit; }
  void Set_Limit(const std::string&, std::int32_t) override {}
};

// Folders that only the records know; nothing of what is measured asks a store.
class No_Folder : public MAPIFolder {
 public:
  MAPIFolder_Ptr Parent() override { return nullptr; }
  std::int32_t DefaultItemType() override { return item_type::mail; }
  std::string EntryID() override { return "F"; }
  std::string StoreID() override { return "S"; }
  std::string Name() override { return "Folder"; }
  Folders_Ptr Folders() override { return nullptr; }
  Items_Ptr Items() override { return std::make_shared<No_Items>(); }
  Table_Ptr GetTable() override { return nullptr; }
  Store_Ptr Store() override { return nullptr; }

 private:
  class No_Items : public tidyfold::Items {
   public:
    std::int32_t Count() override { return items_in_folder; }
    Item_Ptr Item(std::int32_t) override { return nullptr; }
    void Remove(std::int32_t) override {}
  };
};

// All folders are read and ticked, and their items stand in the list.
class Full_Window {
 public:
  Full_Window() {
    app.errors.Trap_Errors = true;
    window.frmRemoveItems.Load();
    app.records.Recreate();
    std::mt19937 random(1);
    Add_Node("Store", 0);
    app.records[1].Loaded = true;
    while (window.trvFolders.Count() <= folder_count) {
      const int folder = Add_Node("Folder " + std::to_string(window.trvFolders.Count()), 1);
      FolderData& record = app.records[folder];
      for (std::int32_t i = 1; i <= items_in_folder; ++i)
        record.ItemCache.push_back(Make_Item(random, folder, i));
      record.CachedCount = items_in_folder;
      record.Loaded = true;
      window.trvFolders.Set_Checked(folder, true);
    }
    window.chkShowSelectedItems.Set_Value(1);
    window.chkShowUnselectedItems.Set_Value(1);
    window.chkSelectType.Set_Value(1);
    window.chkType[0].box.Set_Value(1);
    window.dtpCutoffDate.Set_Value(42'000);
    window.chkSelectDate.Set_Value(1);
    window.txtSelectSubject.Set_Text("re: ");
    window.chkSelectSubject.Set_Value(1);
    window.chkShowAllFolders.Set_Value(1);
    if (window.grdItems.Rows() != folder_count * items_in_folder + 1)
      throw std::runtime_error("rows are missing");
  }

  MainWindow window;
  No_Message_Box box;
  No_Events events;
  No_Clock clock;
  Embedded_Outlook outlook;
  Run_Log log{std::filesystem::temp_directory_path() / "never-written.sqlite"};
  Default_Limits limits;
  App app{window, {outlook, box, events, clock, log, limits, outlook}};

 private:
  int Add_Node(const std::string& name, int parent) {
    const int folder = window.trvFolders.Add(parent, name, name);
    window.trvFolders.Set_Node_Tag(folder, std::to_string(folder));
    app.records.Grow(folder);
    app.records[folder].Folder = std::make_shared<No_Folder>();
    app.records[folder].FolderName = name;
    return folder;
  }
  static ItemData Make_Item(std::mt19937& random, int folder, std::int32_t number) {
    constexpr const char* starts[] = {"", "RE: ", "Re: ", "FW: ", "AW: "};
    constexpr const char* words[] = {"invoice", "minutes", "Übergabe", "holiday",
                                     "Budget",  "offer",   "release"};
    ItemData item;
    item.ItemClass = random() % 5 == 0 ? item_class::appointment : item_class::mail;
    item.SenderOrText = "Sender " + std::to_string(random() % 500);
    item.Subject = std::string(starts[random() % 5]) + words[random() % 7] + " " + words[random() % 7] + " " +
                   std::to_string(random() % 10'000);
    item.ItemDate = static_cast<Date>(36'000 + random() % 9'000);
    item.Unread = random() % 4 == 0;
    item.EntryID = "I" + std::to_string(folder * 1'000'000 + number);
    item.Size = static_cast<std::int64_t>(random() % 50'000);
    return item;
  }
};

Full_Window& Window() {
  static Full_Window window;
  return window;
}

// The filter in force, written out.
struct Bare_Filter {
  explicit Bare_Filter(const MainWindow& window)
      : wanted(Trim(window.txtSelectSubject.Text())),
        cutoff(window.dtpCutoffDate.Value()),
        unread_too(window.chkSelectUnread.Checked()) {}
  bool Passes(const ItemData& item) const {
    return (!item.Unread || unread_too) && item.ItemClass == item_class::mail &&
           std::floor(item.ItemDate) <= cutoff && Begins_Ignoring_Case(Trim(item.Subject), wanted);
  }
  std::string wanted;
  Date cutoff;
  bool unread_too;
};

// A changed filter, up to the marks of all rows, the total and the commands.
void Filter_Changes(benchmark::State& state) {
  Full_Window& full = Window();
  for (auto _ : state) {
    full.window.chkSelectUnread.Set_Value(1 - full.window.chkSelectUnread.Value());
    benchmark::DoNotOptimize(full.window.grdItems.Marked_Rows());
  }
}
BENCHMARK(Filter_Changes)->Unit(benchmark::kMillisecond);

void Filter_Changes_Bare(benchmark::State& state) {
  Full_Window& full = Window();
  bool unread_too = false;
  for (auto _ : state) {
    Bare_Filter filter(full.window);
    filter.unread_too = unread_too = !unread_too;
    std::int64_t items = 0, bytes = 0;
    for (int folder = 2; folder <= full.app.records.Upper_Bound(); ++folder)
      for (const ItemData& item : full.app.records[folder].ItemCache)
        if (filter.Passes(item)) ++items, bytes += item.Size;
    benchmark::DoNotOptimize(items + bytes);
  }
}
BENCHMARK(Filter_Changes_Bare)->Unit(benchmark::kMillisecond);

// A folder is ticked and unticked while the list shows that folder alone, as it does by default.
void Tick(benchmark::State& state) {
  Full_Window& full = Window();
  TreeView& tree = full.window.trvFolders;
  full.window.chkShowAllFolders.Set_Value(0);
  tree.Click_Node(2);
  tree.MouseUp();
  for (auto _ : state) {
    tree.Tick(2, !tree.Checked(2));
    tree.MouseUp();
    benchmark::DoNotOptimize(full.window.grdItems.Marked_Rows());
  }
  tree.Set_Checked(2, true);
}
BENCHMARK(Tick)->Unit(benchmark::kMillisecond);

void Tick_Bare(benchmark::State& state) {
  Full_Window& full = Window();
  for (auto _ : state) {
    const Bare_Filter filter(full.window);
    std::int64_t items = 0;
    for (const ItemData& item : full.app.records[2].ItemCache) items += filter.Passes(item) ? 1 : 0;
    benchmark::DoNotOptimize(items);
  }
}
BENCHMARK(Tick_Bare)->Unit(benchmark::kMillisecond);

// The list of all ticked folders loses one folder's rows and gets them again.
void Tick_In_All_Folders(benchmark::State& state) {
  Full_Window& full = Window();
  TreeView& tree = full.window.trvFolders;
  full.window.chkShowAllFolders.Set_Value(1);
  for (auto _ : state) {
    tree.Tick(2, !tree.Checked(2));
    tree.MouseUp();
    benchmark::DoNotOptimize(full.window.grdItems.Rows());
  }
}
BENCHMARK(Tick_In_All_Folders)->Unit(benchmark::kMillisecond);

GridRow Row_Of(std::int32_t number) {
  return {2 + number / items_in_folder, 1 + number % items_in_folder, false, false, 0};
}

void Sort(benchmark::State& state, Grid_Field field) {
  Full_Window& full = Window();
  FlexGrid& grid = full.window.grdItems;
  full.window.chkShowAllFolders.Set_Value(1);
  for (auto _ : state) {
    state.PauseTiming();
    grid.Set_Rows(1);
    for (std::int32_t i = 0; i < sorted_items; ++i) grid.Add_Item(Row_Of(i));
    state.ResumeTiming();
    grid.Sort(full.app.columns.Get_Sort_Column(field), Sort_Mode::String_Ascending);
  }
}
BENCHMARK_CAPTURE(Sort, subject, Grid_Field::Subject)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Sort, date, Grid_Field::Item_Date)->Unit(benchmark::kMillisecond);

void Sort_Bare(benchmark::State& state, Grid_Field field) {
  Full_Window& full = Window();
  std::vector<std::pair<std::string, std::int32_t>> unsorted;
  unsorted.reserve(sorted_items);
  for (std::int32_t i = 0; i < sorted_items; ++i)
    unsorted.emplace_back(full.app.columns.Field_Text(Row_Of(i), field), i);
  for (auto _ : state) {
    state.PauseTiming();
    auto keys = unsorted;
    state.ResumeTiming();
    std::sort(keys.begin(), keys.end());
    benchmark::DoNotOptimize(keys.data());
  }
}
BENCHMARK_CAPTURE(Sort_Bare, subject, Grid_Field::Subject)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Sort_Bare, date, Grid_Field::Item_Date)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tidyfold

BENCHMARK_MAIN();
