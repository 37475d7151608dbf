// Filtering and sorting, compared with the bare work: a loop over the records with the comparisons written
// out, and std::sort over the same texts.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "grid/grid_rows.h"
#include "stores/sqlite/embedded_outlook.h"

namespace tidyfold {
namespace {

constexpr std::int32_t item_count = 100'000;

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

// One marked folder with all items read, and its rows in the grid.
class Loaded_Folder {
 public:
  Loaded_Folder() {
    errors.Trap_Errors = true;
    window.trvFolders.Add(0, "OUTLOOK", "Folder");
    window.trvFolders.Set_Node_Tag(1, "1");
    window.trvFolders.Set_Checked(1, true);
    records.Recreate();
    std::mt19937 random(1);
    constexpr const char* starts[] = {"", "RE: ", "Re: ", "FW: ", "AW: "};
    constexpr const char* words[] = {"invoice", "minutes", "Übergabe", "holiday",
                                     "Budget",  "offer",   "release"};
    for (std::int32_t i = 1; i <= item_count; ++i) {
      ItemData item;
      item.ItemClass = random() % 5 == 0 ? item_class::appointment : item_class::mail;
      item.SenderOrText = "Sender " + std::to_string(random() % 500);
      item.Subject = std::string(starts[random() % 5]) + words[random() % 7] + " " + words[random() % 7] +
                     " " + std::to_string(random() % 10'000);
      item.ItemDate = static_cast<Date>(36'000 + random() % 9'000);
      item.Unread = random() % 4 == 0;
      item.EntryID = "ENTRY" + std::to_string(i);
      records[1].ItemCache.push_back(std::move(item));
    }
    records[1].CachedCount = item_count;
    for (CheckBox* option : {&window.chkShowSelectedItems, &window.chkShowUnselectedItems,
                             &window.chkSelectType, &window.chkSelectDate, &window.chkSelectSubject})
      option->Set_Value(1);
    window.chkType[0].box.Set_Value(1);
    window.dtpCutoffDate.Set_Value(42'000);
    window.txtSelectSubject.Set_Text("re: ");
    rows.CurrentNodeIndex = 1;
    columns.Set_Grid_Columns();
    rows.Add_All_Folders_Rows(Marker::None);
    if (window.grdItems.Rows() != item_count + 1) throw std::runtime_error("rows are missing");
  }

  No_Message_Box box;
  No_Events events;
  MainWindow window;
  Error_Handler errors{box};
  FolderData_Array records;
  Embedded_Outlook outlook;
  Outlook_Session session{outlook, window, box, errors};
  Folder_Tree tree{window, records, session, box, events, errors};
  Item_Filters filters{window, records, errors};
  Grid_Columns columns{window, records, errors};
  Selection_Total total{window, records, tree, filters, errors};
  Grid_Rows rows{window, records, tree, filters, columns, total, box, errors};
};

Loaded_Folder& Folder() {
  static Loaded_Folder folder;
  return folder;
}

// The filters that Loaded_Folder switches on, written out.
class Bare_Filter {
 public:
  explicit Bare_Filter(const MainWindow& window)
      : wanted_(Trim(window.txtSelectSubject.Text())),
        cutoff_(window.dtpCutoffDate.Value()),
        unread_too_(window.chkSelectUnread.Checked()) {
    for (const TypeBox& type : window.chkType)
      if (type.box.Checked()) types_.push_back(type.index);
  }
  bool Passes(const ItemData& item) const {
    const bool subject = Begins_Ignoring_Case(Trim(item.Subject), wanted_);
    const bool date = std::floor(item.ItemDate) <= cutoff_;
    const bool type = std::find(types_.begin(), types_.end(), item.ItemClass) != types_.end();
    return subject && date && type && (!item.Unread || unread_too_);
  }

 private:
  std::string wanted_;
  Date cutoff_;
  bool unread_too_;
  std::vector<std::int32_t> types_;
};

void Check_Filtered_Record(benchmark::State& state) {
  Loaded_Folder& folder = Folder();
  for (auto _ : state) {
    std::int32_t passing = 0;
    for (std::int32_t i = 1; i <= item_count; ++i)
      passing += folder.filters.Check_Filtered_Record(1, 1, i) ? 1 : 0;
    benchmark::DoNotOptimize(passing);
  }
}
BENCHMARK(Check_Filtered_Record)->Unit(benchmark::kMillisecond);

void Check_Filtered_Record_Bare(benchmark::State& state) {
  Loaded_Folder& folder = Folder();
  for (auto _ : state) {
    const Bare_Filter filter(folder.window);
    std::int32_t passing = 0;
    for (const ItemData& item : folder.records[1].ItemCache) passing += filter.Passes(item) ? 1 : 0;
    benchmark::DoNotOptimize(passing);
  }
}
BENCHMARK(Check_Filtered_Record_Bare)->Unit(benchmark::kMillisecond);

// Unread is switched on and off in turn, so that marks change in every round.
void Change_Filtered_Rows(benchmark::State& state) {
  Loaded_Folder& folder = Folder();
  for (auto _ : state) {
    folder.window.chkSelectUnread.Set_Value(1 - folder.window.chkSelectUnread.Value());
    folder.rows.Change_Filtered_Rows();
    benchmark::DoNotOptimize(folder.window.grdItems.Marked_Rows());
  }
}
BENCHMARK(Change_Filtered_Rows)->Unit(benchmark::kMillisecond);

void Change_Filtered_Rows_Bare(benchmark::State& state) {
  Loaded_Folder& folder = Folder();
  std::vector<GridRow> rows;
  for (int row = 1; row < folder.window.grdItems.Rows(); ++row)
    rows.push_back(folder.window.grdItems.Row_At(row));
  const std::vector<ItemData>& items = folder.records[1].ItemCache;
  for (auto _ : state) {
    folder.window.chkSelectUnread.Set_Value(1 - folder.window.chkSelectUnread.Value());
    const Bare_Filter filter(folder.window);
    for (GridRow& row : rows) row.marked = filter.Passes(items[static_cast<std::size_t>(row.item - 1)]);
    benchmark::DoNotOptimize(rows.data());
  }
}
BENCHMARK(Change_Filtered_Rows_Bare)->Unit(benchmark::kMillisecond);

void Sort(benchmark::State& state, Grid_Field field) {
  Loaded_Folder& folder = Folder();
  FlexGrid& grid = folder.window.grdItems;
  for (auto _ : state) {
    state.PauseTiming();
    grid.Set_Rows(1);
    for (std::int32_t i = 1; i <= item_count; ++i) grid.Add_Item({1, i, false, false, 0});
    state.ResumeTiming();
    grid.Sort(folder.columns.Get_Sort_Column(field), Sort_Mode::String_Ascending);
  }
}
BENCHMARK_CAPTURE(Sort, subject, Grid_Field::Subject)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Sort, date, Grid_Field::Item_Date)->Unit(benchmark::kMillisecond);

void Sort_Bare(benchmark::State& state, Grid_Field field) {
  Loaded_Folder& folder = Folder();
  std::vector<std::pair<std::string, std::int32_t>> unsorted;
  for (std::int32_t i = 1; i <= item_count; ++i)
    unsorted.emplace_back(folder.columns.Field_Text({1, i, false, false, 0}, field), i);
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
