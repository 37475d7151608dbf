// The stores that the command line names, or what Outlook has open.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/terminal.h"
#include "outlook/object_model.h"
#include "outlook/store_session.h"
#include "stores/opening/open_store.h"

namespace tidyfold::cli {

// Null on systems without Outlook. Throws Automation_Error if the system's automation is not available.
std::unique_ptr<Automation> Make_Outlook();

// How the stores of the command line are opened: with progress, passwords, and Ctrl-C. The terminal must
// outlive the stores.
Store_Opening Opening_For(const Arguments& arguments, Store_Mode mode, Terminal& terminal);

class Chosen_Stores {
 public:
  // Opens nothing yet. Throws Failure where Outlook is chosen and there is none on this system.
  explicit Chosen_Stores(const Arguments& arguments);
  Chosen_Stores(const Chosen_Stores&) = delete;
  Chosen_Stores& operator=(const Chosen_Stores&) = delete;

  // Throws Store_Open_Error.
  void Open(const std::vector<Store_Address>& stores, const Store_Opening& opening);
  Automation& Source() const { return *source_; }
  // Throws Failure where Outlook cannot be reached.
  std::shared_ptr<NameSpace> Name_Space();
  // As they were named; none in Outlook.
  std::vector<std::string> Names() const { return stores_.Names(); }
  // The program's own stores; null in Outlook.
  Store_Session* Own_Stores() { return outlook_ == nullptr ? &stores_ : nullptr; }
  // Throws Automation_Error; not in Outlook.
  New_Item Read_Whole_Item(const std::string& store_id, const std::string& entry_id) {
    return stores_.Read_Whole_Item(store_id, entry_id);
  }
  // Throws Automation_Error if pending changes could not be kept.
  void Commit();
  // The same at a yield: what is due.
  void Commit_Due();

 private:
  Store_Session stores_{&Open_Store};
  std::unique_ptr<Automation> outlook_;  // where it is chosen
  Automation* source_ = &stores_;
};

}  // namespace tidyfold::cli
