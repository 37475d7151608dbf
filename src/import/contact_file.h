// The importer of address books (vCard).
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// Throws Import_Error if the file as a whole cannot be read.
void Import_Contacts(const std::filesystem::path& source, Import_Run& run);

// Adds what is in the file to the folder. Throws Import_Error if the file cannot be read.
void Add_Contact_File(const std::filesystem::path& file, const MAPIFolder_Ptr& folder, Import_Run& run);

}  // namespace tidyfold
