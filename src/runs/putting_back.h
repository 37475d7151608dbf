// Putting items back, one after the other: what a taking back does once it has been confirmed.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "controls/interaction.h"
#include "errors/procedure.h"
#include "runs/change_ledger.h"
#include "runs/folder_finder.h"
#include "runs/taking_back.h"

namespace tidyfold {

// Whole days, both included.
struct Days {
  Date first = first_date, last = date_limit;
};

// For one run of the log, which it begins and ends.
class Putting_Back {
 public:
  // `types` as Folder_Finder takes them, by StoreID. Everything that is passed in must outlive it.
  Putting_Back(NameSpace& name_space, Change_Groups* groups, Run_Log& log,
               const Taking_Back::Item_Day& item_day, std::map<std::string, Folder_Finder::Item_Types> types,
               Events& events, Error_Handler& errors, Taking_Back_Report& report);

  void Begin(const Run_Header& header, Date now);
  // One item that was moved, or may have been, in a run of these days. False when no more can be put back.
  bool Put_Back(const Logged_Item& was, const Days& days);
  // An item that is not put back, with its result and reason.
  void Leave(Logged_Item item);
  // Why no more can be put back.
  void Break_Off(const std::string& failure);
  // Waits until the last change is kept, and fills in the report.
  void End(bool cancelled, Date now);

 private:
  Folder_Finder* Finder(const std::string& store_id);
  void Move(Item& item, Folder_Finder& finder, Logged_Item& entry);
  bool Go_On();

  NameSpace& name_space_;
  Run_Log& log_;
  const Taking_Back::Item_Day& item_day_;
  std::map<std::string, Folder_Finder::Item_Types> types_;
  Events& events_;
  Error_Handler& errors_;
  Taking_Back_Report& report_;
  std::map<std::string, std::unique_ptr<Folder_Finder>> finders_;  // by StoreID; empty for stores not open
  std::set<std::string> folders_;                                  // in the report already
  bool group_lost_ = false;                                        // the store could not keep changes
  Change_Ledger ledger_;
};

}  // namespace tidyfold
