// What a cleaning run keeps while it goes.
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

struct Run_State {
  bool Processing = false;          // every loop of the run ends when this turns false
  bool NotAllDeleted = false;       // something could not be removed
  bool ItemsDeleted = false;        // some folder's items were worked on, so the grid must be rebuilt
  bool Cancelled = false;           // the person ended the run before its end
  std::int32_t ProcessedCount = 0;  // items or folders removed
  std::string RunTrace;             // one line per node visited
};

}  // namespace tidyfold
