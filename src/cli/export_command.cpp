// The command that writes what is in the stores in forms that other programs read.
#include "export/export.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/chosen_stores.h"
#include "cli/commands.h"
#include "cli/listing.h"
#include "cli/store_folders.h"
#include "outlook/store_session.h"
#include "stores/opening/open_store.h"

namespace tidyfold::cli {

namespace {

std::vector<std::string> Names_Above(MAPIFolder& folder) {
  std::vector<std::string> names;
  for (MAPIFolder_Ptr above = folder.Parent(); above != nullptr; above = above->Parent())
    if (above->Parent() != nullptr) names.insert(names.begin(), above->Name());
  return names;
}

MAPIFolder_Ptr Top_Of(MAPIFolder_Ptr folder) {
  while (MAPIFolder_Ptr above = folder->Parent()) folder = std::move(above);
  return folder;
}

bool Lies_In(MAPIFolder& folder, const std::vector<Store_Folder>& others) {
  const auto is_one = [&](MAPIFolder& above) {
    return std::any_of(others.begin(), others.end(), [&](const Store_Folder& other) {
      return other.folder->EntryID() == above.EntryID() && other.folder->StoreID() == above.StoreID();
    });
  };
  for (MAPIFolder_Ptr above = folder.Parent(); above != nullptr; above = above->Parent())
    if (is_one(*above)) return true;
  return false;
}

class Export_Command {
 public:
  Export_Command(const Arguments& arguments, Terminal& terminal)
      : arguments_(arguments), terminal_(terminal) {
    stores_.Open(arguments.stores, Opening_For(arguments, Store_Mode::Read_Only, terminal_));
  }

  Exit_Status Run() {
    Choose();
    options_.form = arguments_.export_form;
    options_.progress = [&](std::int64_t done, std::int64_t total) {
      if (terminal_.Progress_Due())
        terminal_.Progress("Exporting  " + std::to_string(done) + " of " + std::to_string(total));
      return !terminal_.Interrupted();
    };
    const Export_Report report = Export_Folders(folders_, arguments_.directory, options_);
    const std::string directory = Printable_Line(report.directory) + ": ";
    terminal_.Write(directory + Counts_Of(report) + "\n");
    for (const std::string& line : Details_Of(report))
      terminal_.Write(directory + Printable_Line(line) + "\n");
    if (report.cancelled) {
      terminal_.Write_Error("Cancelled; what was written stays in \"" + report.directory + "\".");
      return Exit_Status::Cancelled;
    }
    if (!report.ended_by.empty()) terminal_.Write_Error(report.ended_by);
    return report.Is_Whole() ? Exit_Status::Done : Exit_Status::Not_All_Done;
  }

 private:
  void Choose() {
    const bool several = stores_.Open_Stores().size() > 1;
    const std::vector<Store_Folder> all = List_Folders(stores_);
    std::vector<Store_Folder> chosen;
    for (const std::string& path : arguments_.folders) {
      const Store_Folder& found = Find_Folder(all, path);
      const auto same = [&](const Store_Folder& other) { return other.folder == found.folder; };
      if (std::none_of(chosen.begin(), chosen.end(), same)) chosen.push_back(found);
    }
    if (arguments_.folders.empty()) {
      for (const Store_Folder& folder : all)
        if (folder.folder->Parent() == nullptr) chosen.push_back(folder);
    }
    for (const Store_Folder& folder : chosen) {
      // It goes out with the folder above it.
      if (!Lies_In(*folder.folder, chosen)) Add(folder, several);
    }
  }

  void Add(const Store_Folder& chosen, bool several) {
    const std::string store_id = chosen.folder->StoreID();
    std::vector<std::string> above;
    if (several) above.push_back(Top_Of(chosen.folder)->Name());
    std::ranges::move(Names_Above(*chosen.folder), std::back_inserter(above));
    const auto read = [this, store_id](const std::string& entry_id) {
      return stores_.Read_Whole_Item(store_id, entry_id);
    };
    std::ranges::move(Folders_To_Export(chosen.folder, above, read), std::back_inserter(folders_));
    options_.total += Items_In(*chosen.folder);
  }

  const Arguments& arguments_;
  Terminal& terminal_;
  Store_Session stores_{&Open_Store};
  std::vector<Export_Folder> folders_;
  Export_Options options_;
};

}  // namespace

Exit_Status Export(const Arguments& arguments, Terminal& terminal) {
  return Export_Command(arguments, terminal).Run();
}

}  // namespace tidyfold::cli
