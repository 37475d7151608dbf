#include "plan/planner.h"

#include <algorithm>
#include <map>
#include <utility>

#include "outlook/default_folders.h"

namespace tidyfold {

// Brings the folder's verdicts up to date: what has been read since, or all of it under another filter.
const Verdicts& Planner::Judge(int folder) {
  FolderData& record = records_[folder];
  Verdicts& judged = record.Judged;
  const auto cached = static_cast<std::size_t>(record.CachedCount);
  if (judged.filter_version != filter_.Version() || judged.passes.size() > cached)
    judged = {filter_.Version(), {}, {}};
  if (judged.passes.size() == cached) return judged;
  const Item_Filter& filter = filter_.Filter();
  std::size_t at = judged.passes.size();
  judged.passes.resize(cached);
  for (; at < cached; ++at) {
    const ItemData& item = record.ItemCache[at];
    judged.passes[at] = filter.Passes(item) ? 1 : 0;
    if (judged.passes[at] != 0) judged.tally.Add(item);
  }
  return judged;
}

bool Planner::Passes(int folder, std::int32_t item) {
  const std::vector<char>& passes = Judge(folder).passes;
  return item >= 1 && static_cast<std::size_t>(item) <= passes.size() &&
         passes[static_cast<std::size_t>(item - 1)] != 0;
}

bool Planner::Check_Selected_Folders() {
  return errors_.Run("Check_Selected_Folders", [&] {
    for (int folder = 1; folder <= tree_.Upper_Bound(); ++folder) {
      if (!tree_.Exists(folder) || !tree_.Checked(folder)) continue;
      if (records_[folder].Folder != nullptr && !records_[folder].Loaded) return false;
    }
    return true;
  });
}

Clean_Plan Planner::Numbers() {
  return Make(Detail::Numbers);
}

Clean_Plan Planner::Plan_Run() {
  return Make(Detail::Items);
}

Clean_Plan Planner::Make(Detail detail) {
  Clean_Plan plan;
  plan.options = Read_Options(window_, filter_.Filter());
  if (plan.options.by_row) {
    Plan_Rows(plan, detail);
  } else if (tree_.Exists(1)) {
    Plan_Branch(plan, 1, detail);
  }
  return plan;
}

void Planner::Add(Clean_Plan& plan, Plan_Stop stop) {
  plan.exact = plan.exact && stop.exact;
  if (stop.way == Way::Whole_Folder) plan.folders_to_go += stop.folder_goes ? 1 : 0;
  if (stop.way != Way::Whole_Folder || stop.folder_goes) plan.total.Add(stop.tally);
  plan.stops.push_back(std::move(stop));
}

// What lies below a folder first. True when the folder goes with all that lies below it.
bool Planner::Plan_Branch(Clean_Plan& plan, int folder, Detail detail) {
  bool all_below_goes = true;
  for (int child = tree_.Child(folder); child != 0; child = tree_.Next(child))
    all_below_goes = Plan_Branch(plan, child, detail) && all_below_goes;
  if (!tree_.Checked(folder) || records_[folder].Folder == nullptr || records_[folder].Protected)
    return false;
  ++plan.folders_marked;
  Plan_Stop stop = Make_Stop(plan, folder, all_below_goes, detail);
  const bool goes = stop.folder_goes;
  Add(plan, std::move(stop));
  return goes;
}

Plan_Stop Planner::Make_Stop(const Clean_Plan& plan, int folder, bool all_below_goes, Detail detail) {
  const Run_Options& options = plan.options;
  const FolderData& record = records_[folder];
  Plan_Stop stop;
  stop.folder = folder;
  stop.destination =
      options.permanent || options.Takes_Everything() ? Destination::For_Good : Destination::Deleted_Items;
  if (options.turbo) {
    stop.way = Way::Turbo;
    Count_All(stop, detail);
  } else if (options.delete_folders) {
    stop.way = Way::Whole_Folder;
    const int parent = tree_.Parent(folder);
    const bool is_top = parent == 0 || records_[parent].Folder == nullptr;
    stop.folder_goes =
        all_below_goes && !is_top && record.Role == 0 && !Is_Default_Folder_Name(record.FolderName);
    Count_All(stop, detail);
  } else {
    stop.way = record.Loaded ? Way::Cached : Way::Live;
    Count_Passing(stop, detail);
  }
  return stop;
}

// Every item of the folder.
void Planner::Count_All(Plan_Stop& stop, Detail detail) {
  const FolderData& record = records_[stop.folder];
  if (detail == Detail::Numbers) {
    // Numbers that are only shown cost neither a call nor a look at every item: these options have opened
    // every filter.
    stop.tally = Judge(stop.folder).tally;
    stop.tally.items =
        record.Loaded ? record.CachedCount : std::max(record.CachedCount, record.Cache_Bound());
    stop.exact = record.Loaded;
    return;
  }
  for (std::int32_t item = 1; item <= record.CachedCount; ++item) {
    stop.tally.Add(record.Cached(item));
    stop.items.push_back({item, record.Cached(item).EntryID});
  }
  const std::int32_t count = record.Folder->Items()->Count();
  stop.exact = record.Loaded && count == record.CachedCount;
  stop.tally.items = count;
  if (!stop.exact) stop.items.clear();
}

// The items that pass the filter in force, as far as the folder has been read.
void Planner::Count_Passing(Plan_Stop& stop, Detail detail) {
  const Verdicts& judged = Judge(stop.folder);
  stop.tally = judged.tally;
  stop.exact = stop.way == Way::Cached;
  if (detail == Detail::Numbers || !stop.exact) return;
  const FolderData& record = records_[stop.folder];
  stop.items.reserve(static_cast<std::size_t>(judged.tally.items));
  for (std::int32_t item = 1; item <= record.CachedCount; ++item)
    if (judged.passes[static_cast<std::size_t>(item - 1)] != 0)
      stop.items.push_back({item, record.Cached(item).EntryID});
}

void Planner::Plan_Rows(Clean_Plan& plan, Detail detail) {
  if (detail == Detail::Items || row_version_ != grid_.Row_Version()) {
    row_version_ = grid_.Row_Version();
    row_stops_.clear();
    std::map<int, Plan_Stop> stops;
    for (int row = 1; row < grid_.Rows() && grid_.Marked_Rows() > 0; ++row) {
      const GridRow& at = grid_.Row_At(row);
      if (!at.marked || at.item < 1 || at.item > records_[at.row_data].CachedCount) continue;
      if (records_[at.row_data].Protected) continue;
      const ItemData& data = records_[at.row_data].Cached(at.item);
      if (data.ItemClass == ItemData::deleted || data.EntryID.empty()) continue;
      Plan_Stop& stop = stops[at.row_data];
      stop.tally.Add(data);
      if (detail == Detail::Items) stop.items.push_back({at.item, data.EntryID});
    }
    for (auto& [folder, stop] : stops) {
      stop.folder = folder;
      stop.way = Way::By_Row;
      std::sort(stop.items.begin(), stop.items.end(),
                [](const Planned_Item& left, const Planned_Item& right) { return left.item < right.item; });
      row_stops_.push_back(std::move(stop));
    }
  }
  for (Plan_Stop stop : row_stops_) {
    stop.destination = plan.options.permanent ? Destination::For_Good : Destination::Deleted_Items;
    Add(plan, std::move(stop));
  }
}

}  // namespace tidyfold
