// The command that protects folders.
#include "cli/chosen_stores.h"
#include "cli/commands.h"
#include "cli/folder_path.h"
#include "cli/store_folders.h"
#include "outlook/stored_protection.h"
#include "stores/opening/open_store.h"

namespace tidyfold::cli {

namespace {

// The nearest folder above that is protected; null for none.
MAPIFolder_Ptr Protected_Above(Folder_Protection& protection, MAPIFolder& folder) {
  MAPIFolder_Ptr above = folder.Parent();
  while (above != nullptr && !protection.Is_Protected(above->StoreID(), above->EntryID()))
    above = above->Parent();
  return above;
}

}  // namespace

Exit_Status Protect(const Arguments& arguments, Terminal& terminal) {
  const bool off = arguments.protection_off;
  const auto registry =
      Make_System_Registry([&terminal](const std::string& text) { terminal.Write_Error(text); });
  Stored_Protection marks(*registry);
  Store_Session stores(&Open_Store);
  stores.Keep_Marks_In(&marks);
  stores.Open(arguments.stores, Opening_For(arguments, Store_Mode::Read_Write, terminal));
  const std::vector<Store_Folder> all = List_Folders(stores);
  std::vector<Store_Folder> folders;
  // Every path is looked up before anything is changed.
  for (const std::string& path : arguments.folders) folders.push_back(Find_Folder(all, path));
  for (const Store_Folder& folder : folders) {
    stores.Set_Protected(folder.folder->StoreID(), folder.folder->EntryID(), !off);
    const MAPIFolder_Ptr above = Protected_Above(stores, *folder.folder);
    std::string said = off ? "not protected any more" : "protected";
    if (off && above != nullptr)
      said = "still protected, because it lies below \"" + Path_Of_Folder(*above) + "\"";
    terminal.Write(Printable_Line(folder.path + ": " + said) + "\n");
  }
  return Exit_Status::Done;
}

}  // namespace tidyfold::cli
