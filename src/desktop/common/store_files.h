// Commands on stores: opening, making a sample store, importing, compacting.
#pragma once

#include <wx/window.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "desktop/common/mail_accounts.h"
#include "import/import.h"
#include "outlook/store_session.h"
#include "settings/registry.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

// Questions and errors are shown in dialogs; after a failure the question is asked again. All return whether
// the open stores have changed.
class Store_Files {
 public:
  Store_Files(Store_Session& stores, Registry& registry, Server_Waits& waits)
      : stores_(stores), registry_(registry), accounts_(registry, waits) {}

  // Shows the reason if one of the stores cannot be opened.
  bool Open(wxWindow* parent, const std::vector<Store_Address>& addresses);
  bool Ask_And_Open(wxWindow* parent);
  bool Ask_And_Open_Maildir(wxWindow* parent);
  bool Ask_And_Open_Account(wxWindow* parent);
  // What opens stores that were open before, the last ones first, without those that are open.
  std::vector<std::string> Recent() const;
  // Takes a store out of the open ones.
  bool Close(wxWindow* parent, const std::string& store_id);
  bool Make_Sample_Store(wxWindow* parent);
  // Into the first store file that is open, or into a new one if none is.
  bool Import_Files(wxWindow* parent);
  bool Import_Folder(wxWindow* parent);
  // Opens the stores among the files, and imports the others.
  bool Take_In(wxWindow* parent, const std::vector<std::filesystem::path>& files);
  // Asks where to and in which form, and writes a folder with all below it; null: everything.
  void Export(wxWindow* parent, const MAPIFolder_Ptr& folder);
  // Gives the unused room of all open store files back and says how much.
  void Compact(wxWindow* parent);
  // Bytes of the open store files that nothing uses, and of the files.
  std::int64_t Unused_Bytes() const;
  std::int64_t File_Bytes() const;

 private:
  bool Import(wxWindow* parent, const std::vector<std::filesystem::path>& sources,
              const Import_Options& options);
  bool Import_Into(wxWindow* parent, Embedded_Store& store, const std::vector<std::filesystem::path>& sources,
                   Import_Options options);
  std::filesystem::path Ask_New_Store(wxWindow* parent, const wxString& question, const wxString& name);
  void Remember();

  Store_Session& stores_;
  Registry& registry_;
  Mail_Accounts accounts_;
};

}  // namespace tidyfold
