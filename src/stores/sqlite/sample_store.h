// Sample stores for trying out the program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace tidyfold {

inline constexpr std::int32_t sample_default_items = 5000;
inline constexpr std::uint64_t sample_default_seed = 1;

// Creates a store with the ten default folders, some user folders and items of all classes over many years.
// The same name, number of items and seed give the same store. `progress`, if given, receives the number of
// items written so far and can return false to cancel. Returns false if it was cancelled. Throws
// Store_Open_Error, or Automation_Error if the store cannot be written to its end. No file is left behind
// after either.
bool Make_Sample(const std::filesystem::path& path, const std::string& name,
                 std::int32_t items = sample_default_items, std::uint64_t seed = sample_default_seed,
                 const std::function<bool(std::int32_t written)>& progress = {});

}  // namespace tidyfold
