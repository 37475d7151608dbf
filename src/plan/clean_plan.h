// What a run takes, as a value: everything that speaks of it reads this and nothing else.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "outlook/folder_data.h"
#include "plan/run_options.h"

namespace tidyfold {

// How a folder's items are found and removed.
enum class Way {
  By_Row,        // the rows that are picked by hand
  Cached,        // the cached items that pass the filter
  Live,          // the folder's own items that pass it, because not all of them have been read
  Turbo,         // every item
  Whole_Folder,  // the folder with all that is in it
};

enum class Destination { Deleted_Items, For_Good };

// An item by its identity and by its number in the folder's cache.
struct Planned_Item {
  std::int32_t item = 0;
  std::string entry_id;
};

// One folder of the walk.
struct Plan_Stop {
  int folder = 0;
  Way way = Way::Cached;
  Destination destination = Destination::Deleted_Items;
  Tally tally;
  // Every item that goes is known and counted.
  bool exact = true;
  // Of a whole folder: it can go, because all below it goes too and no rule keeps it. Only then do its items
  // count.
  bool folder_goes = false;
  // In the order of the cache, if the plan was made with items and they are known.
  std::vector<Planned_Item> items;
};

// An item that was planned earlier, is not what was planned any more, and therefore stays.
struct Kept_Item {
  int folder = 0;
  ItemData shown;
  std::string reason;
};

struct Clean_Plan {
  Run_Options options;
  // In the order of the walk: what lies below a folder comes before it.
  std::vector<Plan_Stop> stops;
  // Of a plan that was made in an earlier session. The run reports and logs them.
  std::vector<Kept_Item> kept;
  Tally total;
  // Every stop is.
  bool exact = true;
  // Marked folders that are folders of a store.
  std::int32_t folders_marked = 0;
  // Folders that would be removed themselves.
  std::int32_t folders_to_go = 0;
};

}  // namespace tidyfold
