// What has been changed but not yet kept. A change to a store counts once its group has been kept (see
// outlook/change_groups.h); until then the ledger holds what is to happen when that is known.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "outlook/object_model.h"
#include "runs/run_log.h"

namespace tidyfold {

// What became of a change.
struct Change_Outcome {
  bool kept = true;
  // Where it was not kept: the store's reason, if this change alone was not; empty if its whole group was
  // not.
  std::string reason;
  // The EntryID that the item got with it, where the item could not tell before.
  std::string new_entry_id;

  bool Group_Lost() const { return !kept && reason.empty(); }
  // In a sentence for the log.
  std::string Why_Not_Kept() const {
    return reason.empty() ? "The store could not keep the change." : reason;
  }
};

// For one run. Each change goes like this:
//
//   const std::int64_t number = log.Note(item);
//   ledger.Before_Change(store_id);
//   item.Delete();  // where it throws, Set_Result(number, Item_Result::Failed, ...)
//   ledger.Pending(store_id, entry_id, [=](const Change_Outcome& outcome) { ... Set_Result, count ... });
//
// While it lives it is the watcher of the store's groups, and sees to it that the log is on disk before a
// store keeps what the log tells of.
class Change_Ledger : public Group_Watcher {
 public:
  // `groups` is nullptr where each change lasts at once.
  Change_Ledger(Change_Groups* groups, Run_Log& log);
  Change_Ledger(const Change_Ledger&) = delete;
  Change_Ledger& operator=(const Change_Ledger&) = delete;
  // Whoever has not settled leaves changes uncounted.
  ~Change_Ledger() override;

  // Writes the log where the store may keep the next change at once.
  void Before_Change(const std::string& store_id);
  using Settled = std::function<void(const Change_Outcome& outcome)>;

  // An item, by the EntryID that it had, or a folder has been changed. `settled` is called once, when it is
  // known whether the change lasts: at once where every change does. It must not throw or change a store.
  void Pending(std::string store_id, std::string entry_id, Settled settled);
  // Ends every group, after which nothing is pending any more. Throws Automation_Error where a group could
  // not be kept; its changes have then been settled as not kept.
  void Settle();
  // The same for what is due; what its store lets wait stays pending.
  void Settle_Due();

  // Why the log could not be written, in a sentence for the person; empty while it could. A run had better
  // end then: what it goes on to do could not be taken back.
  const std::string& Log_Failure() const { return log_failure_; }

  void Group_Ending() override;
  void Not_Kept(const std::string& store_id, const std::string& entry_id, const std::string& reason) override;
  void Renamed(const std::string& store_id, const std::string& entry_id,
               const std::string& new_entry_id) override;
  void Group_Ended(const std::string& store_id, bool kept) override;

 private:
  struct Change {
    std::string store_id, entry_id;
    Settled settled;
  };
  using Told = std::unordered_map<std::string, std::string>;  // by EntryID
  void Settle(const std::function<bool()>& commit);
  void Flush();

  Change_Groups* groups_;
  Run_Log& log_;
  std::vector<Change> pending_;
  std::unordered_map<std::string, Told> not_kept_, renamed_;  // in the group that ends, by StoreID
  std::unordered_set<std::string> stores_with_groups_;        // as far as one of their groups has ended
  std::string log_failure_;
};

}  // namespace tidyfold
