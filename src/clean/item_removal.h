// Removing one item, found by its identity and removed only while it still is what was shown.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "clean/run_journal.h"
#include "clean/safety_checks.h"
#include "outlook/session.h"
#include "plan/phase.h"

namespace tidyfold {

class Item_Removal {
 public:
  Item_Removal(FolderData_Array& records, const Protected_Folders& protection, Outlook_Session& session,
               Safety_Checks& checks, Run_Journal& journal, Run_State& run, Program_Phase& phase,
               Error_Handler& errors)
      : records_(records),
        protection_(protection),
        session_(session),
        checks_(checks),
        journal_(journal),
        run_(run),
        phase_(phase),
        errors_(errors) {}

  // Forgets the run before.
  void Begin_Run(const Run_Options& options);

  // Asks about the item, where the options say so, and removes it. True when it has left its folder; then
  // `settled` is called once, as soon as it is known whether the store keeps that. What has been removed as
  // the options ask, and kept, adds to the run's counter by itself.
  bool Delete_Current_Item(int folder, const ItemData& shown, ProcessError& process_error,
                           std::function<void(bool left)> settled);

  // The last moment before something of a folder, or the folder itself, is removed. Throws Automation_Error
  // (no_access) for a protected one.
  void Demand_Unprotected(int folder);
  // How many items lie in the Deleted Items folder where a folder's items would go; 0 where there is none.
  // Throws Automation_Error.
  std::int32_t Deleted_Items_Count(int folder);
  // Whether an item that was removed from a folder for good has only moved to Deleted Items, which held so
  // many before.
  bool Was_Only_Moved(int folder, const ItemData& removed, std::int32_t count_before);

  // The failure that is the current error.
  void Failed(ProcessError& process_error, std::string_view process, std::string_view item);

 private:
  std::string What_Has_Changed(int folder, Item& item, const ItemData& shown);
  void Remove(int folder, Item& item, const ItemData& shown, std::int64_t number,
              const std::function<void(bool left)>& settled, bool& left);
  void Delete_What_Is_Left(const std::string& entry_id, const std::string& store_id);
  void Count_When_Kept(int folder, const std::string& store_id, const std::string& entry_id,
                       std::int64_t number, const std::string& new_id);
  bool Is_Deleted_Items(int folder);

  FolderData_Array& records_;
  const Protected_Folders& protection_;
  Outlook_Session& session_;
  Safety_Checks& checks_;
  Run_Journal& journal_;
  Run_State& run_;
  Program_Phase& phase_;
  Error_Handler& errors_;
  Run_Options options_;
  std::map<int, bool> is_deleted_items_;  // as far as the run has asked
  std::set<int> unprotected_;             // likewise
};

}  // namespace tidyfold
