// The importer of Outlook's own files.
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// PST, OST and PAB: the tree of folders with their items goes below the folder, without search folders and
// Outlook's internal ones. Throws Import_Error if the file as a whole cannot be read, or if it has items and
// none of them is found.
void Import_Pst(const std::filesystem::path& source, const MAPIFolder_Ptr& folder, Import_Run& run);

}  // namespace tidyfold
