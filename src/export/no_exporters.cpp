// For builds without the libraries that write other programs' files.
#include "export/export.h"

namespace tidyfold {

bool Can_Export() {
  return false;
}

std::vector<Export_Folder> Folders_To_Export(const MAPIFolder_Ptr&, std::vector<std::string>,
                                             const Read_Item&) {
  return {};
}

std::vector<std::string> Entry_Ids_Of(MAPIFolder&) {
  return {};
}

std::int64_t Items_In(MAPIFolder&) {
  return 0;
}

Export_Report Export_Folders(const std::vector<Export_Folder>&, const std::filesystem::path& directory,
                             const Export_Options&) {
  throw Export_Error(directory.string() +
                     ": this edition of Tidyfold exports nothing. Export from Outlook instead.");
}

}  // namespace tidyfold
