// What a run keeps while it goes, and what it has done when it has ended.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tidyfold {

struct Run_State {
  bool Began = false;               // its questions were answered so that it could begin
  bool NotAllDeleted = false;       // something could not be removed
  bool ItemsDeleted = false;        // some folder's items were worked on, so the grid must be rebuilt
  bool Cancelled = false;           // the person ended the run before its end
  bool GroupLost = false;           // a store could not keep changes that had been made
  std::string WhyNotDeleted;        // the first reason of a store that could not make a single change
  std::int32_t ProcessedCount = 0;  // items or folders removed, as far as the stores have kept it
  std::string Copy;                 // where the copy lies that was kept before it began; empty: none
  std::int32_t MovedInstead = 0;    // of them, those that their store has only moved to Deleted Items
  std::string RunTrace;             // one line per node visited; kept for a person who debugs a run
  // Items that were kept because they are not what was shown any more: "folder: subject".
  std::vector<std::string> Changed;
};

}  // namespace tidyfold
