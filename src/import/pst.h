// The importer of Outlook's own files.
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// PST, OST and PAB: the tree of folders with their items, without search folders and what Outlook keeps for
// itself. Throws Import_Error where the file cannot be read as a whole.
void Import_Pst(const std::filesystem::path& source, Import_Run& run);

}  // namespace tidyfold
