// What a program under test finds around it, apart from its stores: a log of runs of its own, and limits.
#pragma once

#include <map>
#include <set>
#include <utility>

#include "app/app.h"
#include "doubles/fake_events.h"
#include "doubles/fixed_clock.h"
#include "doubles/scripted_message_box.h"
#include "doubles/temporary_directory.h"
#include "settings/file_registry.h"

namespace tidyfold {

class Limits_In_Memory : public Deleted_Items_Limits {
 public:
  std::int32_t Limit(const std::string& store_id) override {
    return limits_.try_emplace(store_id, default_deleted_items_limit).first->second;
  }
  void Set_Limit(const std::string& store_id, std::int32_t limit) override { limits_[store_id] = limit; }

 private:
  std::map<std::string, std::int32_t> limits_;
};

class Protection_In_Memory : public Folder_Protection {
 public:
  bool Is_Protected(const std::string& store_id, const std::string& entry_id) override {
    return marks_.contains({store_id, entry_id});
  }
  void Set_Protected(const std::string& store_id, const std::string& entry_id, bool is_protected) override {
    if (is_protected) marks_.emplace(store_id, entry_id);
    if (!is_protected) marks_.erase({store_id, entry_id});
  }
  bool Can_Change(const std::string&) override { return can_change; }
  bool can_change = true;

 private:
  std::set<std::pair<std::string, std::string>> marks_;
};

// Notes what it is to copy.
class Copies_In_Memory : public Item_Copies {
 public:
  Kept_Copy Keep(const std::vector<Folder_To_Copy>& folders, const std::string& directory,
                 const std::function<bool(std::int64_t, std::int64_t)>& go_on) override {
    Kept_Copy kept;
    for (const Folder_To_Copy& folder : folders) {
      std::vector<std::string> ids = folder.entry_ids;
      for (std::int32_t i = 1; folder.whole && i <= folder.folder->Items()->Count(); ++i)
        ids.push_back(folder.folder->Items()->Item(i)->EntryID());
      for (const std::string& id : ids) items.insert(folder.folder->StoreID() + " " + id);
    }
    during();
    kept.cancelled = !go_on(1, 2);
    kept.place = directory + "/copy";
    kept.failure = failure;
    return kept;
  }
  std::set<std::string> items;  // "store id entry id"
  std::string failure;
  std::function<void()> during = [] {};
};

struct Test_Surroundings {
  Scripted_Message_Box box;
  Fake_Events events;
  Fixed_Clock clock;  // 2023-03-15
  // In memory where the system has a place for that: thousands of logs are begun.
  Temporary_Directory state_folder{
      std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()};
  Run_Log log{state_folder / "runs.sqlite"};
  Limits_In_Memory limits;
  Protection_In_Memory protection;
  Copies_In_Memory kept_copies;
  File_Registry registry{state_folder / "settings.json", {}};

  Surroundings Around(Automation& automation) {
    return {automation, box, events, clock, log, limits, protection, nullptr, &kept_copies, &registry};
  }
};

}  // namespace tidyfold
