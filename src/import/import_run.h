// What all importers share: target folders, what is there already, counts, portions, progress and cancelling.
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

// Thrown when the progress callback returned false. Ends the run; what was added stays.
struct Import_Cancelled {};

class Import_Run {
 public:
  Import_Run(const std::filesystem::path& source, Store_Writer& writer, const Import_Options& options);

  // Where a source goes that brings no folders of its own. Created, if missing, with the first call.
  MAPIFolder_Ptr Target_Folder(std::int32_t default_item_type = item_type::mail);
  // Where a source puts the folders that it brings.
  MAPIFolder_Ptr Tree_Folder();
  // Whether the source's folders become one with the store's own.
  bool Merges() const { return options_.merge; }
  // The first folder of that name below the parent; created if missing. The type is an item_type number.
  MAPIFolder_Ptr Folder(const MAPIFolder_Ptr& parent, std::string_view name, std::int32_t default_item_type);

  // Adds the item, or counts it as there already.
  void Add(MAPIFolder& folder, New_Item item);
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

  // Names the file that the next failures lie in, where a source is more than one file; empty for none.
  void Set_File(std::string file) { file_ = std::move(file); }

  const Import_Report& Report() const { return report_; }
  bool Has_Committed() const { return has_committed_; }
  // Without what was added since the last commit.
  Import_Report Report_Of_Committed() const;

 private:
  static constexpr std::chrono::milliseconds period{12};
  static constexpr std::int64_t portion_items = 5000, portion_bytes = std::int64_t{16} << 20;
  using Children = std::unordered_map<std::string, MAPIFolder_Ptr>;
  struct Copies {
    std::int32_t before = 0;  // in the store when the run met the first one
    std::int32_t met = 0;     // in the source
  };

  bool Is_There_Already(const New_Item& item);
  void End_Portion();
  std::string In_File(std::string_view where) const;

  Store_Writer& writer_;
  const Import_Options& options_;
  std::string default_folder_;
  MAPIFolder_Ptr top_;
  MAPIFolder_Ptr target_;
  std::unordered_map<std::string, Children> children_;  // by the parent's EntryID
  std::unordered_map<std::int64_t, Copies> copies_;     // by identity
  Import_Report report_;
  std::string file_;
  bool has_committed_ = false;
  std::int64_t items_in_portion_ = 0, bytes_in_portion_ = 0;
  std::optional<std::int64_t> total_;
  std::chrono::steady_clock::time_point last_tick_;
};

}  // namespace tidyfold
