// Compares what was written with what should have been.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tidyfold {

// An item that was written, by its fingerprint.
struct Written_Item {
  std::int64_t fingerprint = 0;
  std::string where;
};

// Reads the items of one directory as an importer does, and returns those that are not there as they were
// written. `tick` is called often; returns false to cancel, and then all count as there.
std::vector<Written_Item> Missing_In(const std::filesystem::path& directory,
                                     std::vector<Written_Item> written, const std::function<bool()>& tick);

}  // namespace tidyfold
