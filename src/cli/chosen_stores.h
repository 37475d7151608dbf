// The stores that the command line names: files, or what Outlook has open.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "outlook/object_model.h"
#include "stores/sqlite/embedded_outlook.h"

namespace tidyfold::cli {

// Null on systems without Outlook. Throws Automation_Error if the system's automation is not available.
std::unique_ptr<Automation> Make_Outlook();

class Chosen_Stores {
 public:
  // Opens nothing yet. Throws Failure where Outlook is chosen and there is none on this system.
  explicit Chosen_Stores(const Arguments& arguments);
  Chosen_Stores(const Chosen_Stores&) = delete;
  Chosen_Stores& operator=(const Chosen_Stores&) = delete;

  // Throws Store_Open_Error.
  void Open(const std::vector<std::filesystem::path>& files, Store_Mode mode,
            const Store_Progress& progress = {});
  Automation& Source() const { return *source_; }
  // Throws Failure where Outlook cannot be reached.
  std::shared_ptr<NameSpace> Name_Space();
  // The names of the files as given; none in Outlook.
  std::vector<std::string> Files() const;
  // Where protected folders are marked in the files; null in Outlook.
  Folder_Protection* Marks_In_Files() { return outlook_ == nullptr ? &files_ : nullptr; }
  // Throws Automation_Error; only of files.
  New_Item Read_Whole_Item(const std::string& store_id, const std::string& entry_id) {
    return files_.Read_Whole_Item(store_id, entry_id);
  }
  // Throws Automation_Error if pending changes could not be kept.
  void Commit();

 private:
  Embedded_Outlook files_;
  std::unique_ptr<Automation> outlook_;  // where it is chosen
  Automation* source_ = &files_;
};

}  // namespace tidyfold::cli
