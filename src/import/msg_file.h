// The importer of single items that Outlook saved (MSG).
#pragma once

#include <filesystem>
#include <string>

#include "import/import_run.h"

namespace tidyfold {

// Throws Import_Error if the file cannot be read, or holds no item.
void Import_Msg(const std::filesystem::path& source, Import_Run& run);

// Adds the file's item to the folder. Throws Message_Error if it cannot be read.
void Add_Msg_File(const std::filesystem::path& file, MAPIFolder& folder, Import_Run& run);

// Throws Message_Error for bytes that are no MSG file.
New_Item Read_Msg(const std::string& bytes);

}  // namespace tidyfold
