// What a run does, written down and counted: an item's change counts when its store has kept it, and the log
// knows of it before.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "base/clock.h"
#include "clean/run_state.h"
#include "controls/interaction.h"
#include "plan/clean_plan.h"
#include "runs/change_ledger.h"
#include "runs/run_log.h"

namespace tidyfold {

class Run_Journal {
 public:
  Run_Journal(Automation& automation, Run_Log& log, FolderData_Array& records, Run_State& run, Clock& clock,
              Message_Box& message_box)
      : automation_(automation),
        log_(log),
        records_(records),
        run_(run),
        clock_(clock),
        message_box_(message_box) {}

  // Before anything is removed. Where the log cannot be written, the person is asked; false: better not.
  bool Begin(const Clean_Plan& plan);
  // After the last change has been settled.
  void End();

  // An item that is about to be changed, or about which something is to be said. Throws Automation_Error
  // where its folder cannot be described.
  std::int64_t Note(int folder, const ItemData& item, Item_Action action);
  // A folder that is about to be removed.
  std::int64_t Note_Folder(int folder);
  // The new EntryID is that of an item which got another one when it was moved.
  void Set_Result(std::int64_t number, Item_Result result, const std::string& reason = {},
                  const std::string& new_entry_id = {});
  // An item that stays because it is not what was shown any more.
  void Note_Changed(int folder, const ItemData& item, Item_Action action, const std::string& reason);

  // Around each change to a store; see Change_Ledger. `settled` runs when it is known whether the change
  // lasts, before anything else of the run goes on to rely on it.
  void Before_Change(const std::string& store_id) { ledger_->Before_Change(store_id); }
  void Pending(const std::string& store_id, const std::string& entry_id, Change_Ledger::Settled settled);
  // Ends the groups of changes; nothing is pending afterwards. Throws Automation_Error when something could
  // not be kept.
  void Settle() { ledger_->Settle(); }
  // Only those that are due.
  void Settle_Due() { ledger_->Settle_Due(); }
  // Why the run had better end: something was not kept, or cannot be written down any more. Empty: go on.
  std::string Reason_To_End() const;

 private:
  const Logged_Folder& Describe(int folder);

  Automation& automation_;
  Run_Log& log_;
  FolderData_Array& records_;
  Run_State& run_;
  Clock& clock_;
  Message_Box& message_box_;
  std::unique_ptr<Change_Ledger> ledger_;
  std::map<int, Logged_Folder> folders_;
  bool logging_ = false;
};

}  // namespace tidyfold
