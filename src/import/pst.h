// The importer of Outlook's own files.
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// PST, OST and PAB: the tree of folders with their items, without search folders and Outlook's internal ones.
// Throws Import_Error if the file as a whole cannot be read.
void Import_Pst(const std::filesystem::path& source, Import_Run& run);

}  // namespace tidyfold
