// The importers of mail that lies in plain files.
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// Each imports one source and throws Import_Error where it cannot be read as a whole.
void Import_Mbox(const std::filesystem::path& source, Import_Run& run);
void Import_Maildir(const std::filesystem::path& source, Import_Run& run);
void Import_Eml(const std::filesystem::path& source, Import_Run& run);

}  // namespace tidyfold
