// Gives unused room of a store file back to the file system.
#pragma once

#include <filesystem>
#include <memory>

#include "stores/sqlite/database.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold::sqlite {

// Bytes in the file that nothing uses. Compacting may free more, as it also fills up pages.
std::int64_t Unused_Bytes(Database& database);

// Writes the store's draft without unused room. Returns false if `progress` did, or if a draft cannot
// be written, for want of room above all; there is none then. Throws Automation_Error.
bool Write_Compact_Draft(Database& database, const std::filesystem::path& path,
                         const Store_Progress& progress, bool& cancelled);

// Moves pages from the end of the file into unused ones, in small transactions, and cuts the file. Returns
// false if `progress` did; what was freed is freed. Throws Automation_Error.
bool Compact_In_Place(Database& database, const Store_Progress& progress);

}  // namespace tidyfold::sqlite
