// The importers of messages in files of their own, and of mbox files.
#pragma once

#include <filesystem>
#include <functional>

#include "import/import_run.h"

namespace tidyfold {

// Each imports one source. Throws Import_Error if the source as a whole cannot be read.
void Import_Mbox(const std::filesystem::path& source, const MAPIFolder_Ptr& folder, Import_Run& run);
void Import_Message(const std::filesystem::path& source, Import_Run& run);

// Adds the message of a file, after `change` has seen it. In Apple's frame the message is marked as there.
// Throws Message_Error if it cannot be read.
void Add_Message_File(const std::filesystem::path& file, MAPIFolder& folder, Import_Run& run,
                      const std::function<void(New_Item&)>& change = {});

}  // namespace tidyfold
