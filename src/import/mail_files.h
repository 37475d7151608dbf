// The importers of mail in plain files.
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// Each imports one source. Throws Import_Error if the source as a whole cannot be read.
void Import_Mbox(const std::filesystem::path& source, Import_Run& run);
void Import_Maildir(const std::filesystem::path& source, Import_Run& run);
void Import_Eml(const std::filesystem::path& source, Import_Run& run);

}  // namespace tidyfold
