#include "clean/run_journal.h"

#include <set>
#include <utility>

namespace tidyfold {

bool Run_Journal::Begin(const Clean_Plan& plan) {
  folders_.clear();
  Run_Header header;
  header.options = plan.options.In_Words();
  header.items = plan.total.items;
  header.bytes = plan.total.bytes;
  header.folders =
      plan.options.delete_folders ? plan.folders_to_go : static_cast<std::int64_t>(plan.stops.size());
  header.exact = plan.exact;
  std::set<std::string> stores;
  for (const Plan_Stop& stop : plan.stops) {
    MAPIFolder_Ptr top = records_[stop.folder].Folder;
    while (const MAPIFolder_Ptr above = top->Parent()) top = above;
    const std::string id = top->StoreID();
    if (stores.insert(id).second) header.stores.push_back({id, top->Name(), automation_.Place_Of_Store(id)});
  }
  logging_ = false;
  try {
    log_.Begin(header, clock_.Now());
    logging_ = true;
  } catch (const Run_Log_Error& error) {
    const std::string question =
        "This run cannot be written to the log of runs, so it could not be taken back.\r\n\r\n" +
        std::string(error.what()) + "\r\n\r\nClean without the log?";
    if (message_box_.Show(question, Buttons::Yes_No) != Answer::Yes) return false;
  }
  ledger_ = std::make_unique<Change_Ledger>(automation_.Groups(), log_);
  return true;
}

void Run_Journal::End() {
  ledger_.reset();
  if (!std::exchange(logging_, false)) return;
  try {
    log_.End({run_.ProcessedCount, run_.NotAllDeleted, run_.Cancelled}, clock_.Now());
  } catch (const Run_Log_Error& error) {
    message_box_.Show(error.what(), Buttons::OK_Only, Icon::Critical);
  }
}

const Logged_Folder& Run_Journal::Describe(int folder) {
  const auto known = folders_.find(folder);
  if (known != folders_.end()) return known->second;
  return folders_.emplace(folder, Describe_Folder(*records_[folder].Folder)).first->second;
}

std::int64_t Run_Journal::Note(int folder, const ItemData& item, Item_Action action) {
  if (!logging_) return 0;
  Logged_Item logged;
  logged.folder = Describe(folder);
  logged.entry_id = item.EntryID;
  logged.subject = item.Subject;
  logged.date = item.ItemDate;
  logged.item_class = item.ItemClass;
  logged.action = action;
  return log_.Note(logged);
}

std::int64_t Run_Journal::Note_Folder(int folder) {
  if (!logging_) return 0;
  Logged_Item logged;
  logged.folder = Describe(folder);
  logged.entry_id = logged.folder.entry_id;
  logged.subject = records_[folder].FolderName;
  logged.action = Item_Action::Folder_Deleted;
  return log_.Note(logged);
}

void Run_Journal::Set_Result(std::int64_t number, Item_Result result, const std::string& reason,
                             const std::string& new_entry_id) {
  if (logging_) log_.Set_Result(number, result, new_entry_id, reason);
}

void Run_Journal::Note_Changed(int folder, const ItemData& item, Item_Action action,
                               const std::string& reason) {
  run_.Changed.push_back(records_[folder].FolderName + ": " + item.Subject);
  Set_Result(Note(folder, item, action), Item_Result::Changed, reason);
}

void Run_Journal::Pending(const std::string& store_id, const std::string& entry_id,
                          Change_Ledger::Settled settled) {
  ledger_->Pending(store_id, entry_id, [this, settled = std::move(settled)](const Change_Outcome& outcome) {
    if (!outcome.kept) run_.NotAllDeleted = true;
    if (outcome.Group_Lost()) run_.GroupLost = true;
    if (!outcome.Group_Lost() && run_.WhyNotDeleted.empty()) run_.WhyNotDeleted = outcome.reason;
    settled(outcome);
  });
}

std::string Run_Journal::Reason_To_End() const {
  if (!ledger_->Log_Failure().empty() && logging_) return ledger_->Log_Failure();
  return run_.GroupLost ? "The store could not keep what was changed." : "";
}

}  // namespace tidyfold
