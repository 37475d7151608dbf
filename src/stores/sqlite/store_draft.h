// Writes store files beside their place and puts them there when they are complete, so that no crash leaves
// half a store.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

// Where a draft of the store is written.
std::filesystem::path Draft_Of(const std::filesystem::path& path);

// Begins the store's draft: empty, without identity and folders, in a transaction that the caller commits
// before closing it. Throws Store_Open_Error or Automation_Error.
std::unique_ptr<Database> Begin_Draft(const std::filesystem::path& path);

// Creates a store with its identity and the default folders. Never touches a file that exists. Throws
// Store_Open_Error.
void Create_File(const std::filesystem::path& path, const std::string& store_name,
                 const std::string& store_id);

// Lets the store's complete draft take its place and opens it instead of `database`. The store stays locked,
// except on Windows, where a file that is open cannot be replaced. Throws Store_Open_Error; `database` is
// then empty (Windows), or as it was.
void Put_In_Place(std::unique_ptr<Database>& database, const std::filesystem::path& path);

// Removes a store or a draft that could not be completed, with its log.
void Remove_File(const std::filesystem::path& path);

}  // namespace tidyfold::sqlite
