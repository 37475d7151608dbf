// What all importers share: target folders, counts, progress and cancelling.
#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "import/import.h"

namespace tidyfold {

// Why mail that its program has marked as deleted stays out.
inline constexpr std::string_view deleted_mail = "it was deleted in the program that it comes from";

// Thrown when the progress callback returned false. Ends the run; the store is rolled back.
struct Import_Cancelled {};

class Import_Run {
 public:
  Import_Run(const std::filesystem::path& source, Store_Writer& writer, const Import_Options& options);

  MAPIFolder_Ptr Top_Folder() const { return top_; }
  // The target of mail that brings no folder of its own.
  MAPIFolder_Ptr Target_Folder();
  // The first folder of that name below the parent; created if missing. The type is an item_type number.
  MAPIFolder_Ptr Folder(const MAPIFolder_Ptr& parent, std::string_view name, std::int32_t default_item_type);
  MAPIFolder_Ptr Deleted_Items();

  void Add(MAPIFolder& folder, const New_Item& item);
  void Fail(std::string_view where, std::string_view why);
  // For an item that went in, but perhaps not as it was.
  void Doubt(std::string_view where, std::string_view why);
  // For items that can be read and are left out on purpose.
  void Leave_Out(std::string_view where, std::string_view why);
  void Expect(std::int64_t total) { total_ = total; }

  // Calls the progress callback when it is due. Cheap otherwise, so call it often.
  void Tick();
  // Runs long work that cannot tick on a thread of its own and ticks meanwhile. When the run is cancelled,
  // `stop` is called before waiting for the thread.
  template <class Work>
  auto Beside(Work work, const std::function<void()>& stop = {}) {
    auto result = std::async(std::launch::async, std::move(work));
    try {
      while (result.wait_for(period / 3) != std::future_status::ready) Tick();
    } catch (...) {
      if (stop) stop();
      result.wait();
      throw;
    }
    return result.get();
  }

  const Import_Report& Report() const { return report_; }

 private:
  static constexpr std::chrono::milliseconds period{12};
  using Children = std::unordered_map<std::string, MAPIFolder_Ptr>;

  Store_Writer& writer_;
  const Import_Options& options_;
  std::string default_folder_;
  MAPIFolder_Ptr top_;
  std::unordered_map<std::string, Children> children_;  // by the parent's EntryID
  Import_Report report_;
  std::optional<std::int64_t> total_;
  std::chrono::steady_clock::time_point last_tick_;
};

}  // namespace tidyfold
