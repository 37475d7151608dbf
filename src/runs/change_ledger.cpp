#include "runs/change_ledger.h"

#include <exception>
#include <utility>

namespace tidyfold {

Change_Ledger::Change_Ledger(Change_Groups* groups, Run_Log& log) : groups_(groups), log_(log) {
  if (groups_ != nullptr) groups_->Watch(this);
}

Change_Ledger::~Change_Ledger() {
  if (groups_ != nullptr) groups_->Watch(nullptr);
}

// Groups may exist without this store having any, so the first change of each store is written ahead.
void Change_Ledger::Before_Change(const std::string& store_id) {
  if (!stores_with_groups_.contains(store_id)) Flush();
}

void Change_Ledger::Pending(std::string store_id, std::string entry_id, Settled settled) {
  if (groups_ == nullptr) {
    settled({});
  } else {
    pending_.push_back({std::move(store_id), std::move(entry_id), std::move(settled)});
  }
}

void Change_Ledger::Settle() {
  Settle([this] { return groups_->Commit_Pending(), true; });
}

void Change_Ledger::Settle_Due() {
  Settle([this] { return groups_->Commit_Due(); });
}

void Change_Ledger::Settle(const std::function<bool()>& commit) {
  std::exception_ptr failure;
  if (groups_ != nullptr) {
    try {
      if (!commit()) return;
    } catch (...) {
      failure = std::current_exception();
    }
  }
  // What no group has settled was changed in a store without groups.
  for (const Change& change : std::exchange(pending_, {})) change.settled({});
  Flush();
  if (failure != nullptr) std::rethrow_exception(failure);
}

void Change_Ledger::Group_Ending() {
  Flush();
}

void Change_Ledger::Not_Kept(const std::string& store_id, const std::string& entry_id,
                             const std::string& reason) {
  not_kept_[store_id][entry_id] = reason.empty() ? "The store did not say why." : reason;
}

void Change_Ledger::Renamed(const std::string& store_id, const std::string& entry_id,
                            const std::string& new_entry_id) {
  renamed_[store_id][entry_id] = new_entry_id;
}

void Change_Ledger::Group_Ended(const std::string& store_id, bool kept) {
  stores_with_groups_.insert(store_id);
  const Told failures = std::exchange(not_kept_[store_id], {}), names = std::exchange(renamed_[store_id], {});
  const auto told = [](const Told& all, const std::string& entry_id) {
    const auto found = all.find(entry_id);
    return found == all.end() ? std::string() : found->second;
  };
  std::vector<Change> others;
  for (Change& change : std::exchange(pending_, {})) {
    if (change.store_id == store_id) {
      Change_Outcome outcome{kept, kept ? told(failures, change.entry_id) : "", told(names, change.entry_id)};
      outcome.kept = kept && outcome.reason.empty();
      change.settled(outcome);
    } else {
      others.push_back(std::move(change));
    }
  }
  pending_ = std::move(others);
}

// A store in the middle of keeping its changes has no use for a failure of the log.
void Change_Ledger::Flush() {
  try {
    log_.Flush();
  } catch (const Run_Log_Error& error) {
    if (log_failure_.empty()) log_failure_ = error.what();
  }
}

}  // namespace tidyfold
