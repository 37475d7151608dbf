// Brings stores of older formats up to date.
#pragma once

#include <filesystem>
#include <memory>

#include "stores/sqlite/database.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold::sqlite {

// Copies a store of format 1 into a draft of the current format, which then takes its place. Until that
// moment the store is not changed, so that a crash loses nothing and the next opening begins anew. Throws
// Store_Open_Error, also when `progress` returns false.
void Migrate(std::unique_ptr<Database>& database, const std::filesystem::path& path,
             const Store_Progress& progress);

}  // namespace tidyfold::sqlite
