// Made-up stores to try the program on.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace tidyfold {

inline constexpr std::int32_t sample_default_items = 5000;
inline constexpr std::uint64_t sample_default_seed = 1;

// Writes a new store with the ten default folders, some of the user's own and items of every class over
// many years; the same name, number of items and seed give the same store. `progress`, where given, is told
// the number of items written so far and may return false to stop; the file is then removed. Returns whether
// the store was written. Throws Store_Open_Error, and Automation_Error when the disk fills up on the way (the
// file is removed).
bool Make_Sample(const std::filesystem::path& path, const std::string& name,
                 std::int32_t items = sample_default_items, std::uint64_t seed = sample_default_seed,
                 const std::function<bool(std::int32_t written)>& progress = {});

}  // namespace tidyfold
