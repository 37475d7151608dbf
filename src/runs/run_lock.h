// Tells a run that is under way from one whose process was killed: a file beside the log, locked for as long
// as the run lasts. The operating system takes the lock away with the process, however that ends.
#pragma once

#include <filesystem>
#include <memory>

namespace tidyfold {

class Run_Lock {
 public:
  virtual ~Run_Lock() = default;
  // Makes and locks the file; the lock's destructor removes both. Throws std::filesystem::filesystem_error.
  static std::unique_ptr<Run_Lock> Take(const std::filesystem::path& file);
  // Whether anybody holds it, this process included.
  static bool Is_Held(const std::filesystem::path& file);
};

}  // namespace tidyfold
