#include "stores/sqlite/store_draft.h"

#ifdef _WIN32
#include <io.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <string_view>
#include <system_error>
#include <tuple>

#include "errors/automation_error.h"
#include "outlook/default_folders.h"
#include "stores/sqlite/store_file.h"
#include "stores/sqlite/store_schema.h"

namespace tidyfold::sqlite {

namespace {

using Reason = Store_Open_Error::Reason;
namespace fs = std::filesystem;

bool Write_To_Disk(const fs::path& file) {
#ifdef _WIN32
  std::FILE* const stream = _wfopen(file.c_str(), L"r+b");
  const bool written = stream != nullptr && _commit(_fileno(stream)) == 0;
#else
  std::FILE* const stream = std::fopen(file.c_str(), "r+b");
  const bool written = stream != nullptr && fsync(fileno(stream)) == 0;
#endif
  if (stream != nullptr) std::fclose(stream);
  return written;
}

// Matters to whoever works on another's store as root. Where it fails, the file is the caller's own.
void Keep_Owner([[maybe_unused]] const fs::path& of, [[maybe_unused]] const fs::path& file) {
#ifndef _WIN32
  struct stat status {};
  if (stat(of.c_str(), &status) == 0) std::ignore = chown(file.c_str(), status.st_uid, status.st_gid);
#endif
}

void Fill_New(Database& draft, const std::string& store_name, const std::string& store_id) {
  Statement(draft, "INSERT INTO store (id, store_id) VALUES (1, ?1)").Bind(1, store_id).Run();
  Statement add(draft, "INSERT INTO folder (parent, name, item_type) VALUES (?1, ?2, ?3)");
  add.Bind_Null(1).Bind(2, std::string_view(store_name)).Bind(3, std::int64_t{0}).Run();
  for (const Default_Folder& folder : default_folders) {
    add.Bind(1, std::int64_t{1});
    add.Bind(2, std::string_view(folder.name)).Bind(3, std::int64_t{folder.item_type}).Run();
  }
}

}  // namespace

fs::path Draft_Of(const fs::path& path) {
  return Beside(path, "-new");
}

void Remove_File(const fs::path& path) {
  std::error_code ignored;
  for (const char* ending : {"", "-journal", "-wal"}) {
    fs::path file = path;
    fs::remove(file += ending, ignored);
  }
}

std::unique_ptr<Database> Begin_Draft(const fs::path& path) {
  const fs::path draft = Draft_Of(path);
  Remove_File(draft);
  // Errors name the store.
  auto database = std::make_unique<Database>(
      Connect(path, Utf8(draft), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE), Utf8(path));
  // A draft that is not completed is thrown away, so that it needs no journal.
  database->Execute(
      "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
      "PRAGMA cache_size = -16384;");
  // Lets a store be compacted in place; cannot be chosen later.
  database->Execute("PRAGMA auto_vacuum = INCREMENTAL; BEGIN;");
  database->Execute(("PRAGMA application_id = " + std::to_string(application_id)).c_str());
  database->Execute(("PRAGMA user_version = " + std::to_string(schema_version)).c_str());
  database->Execute(schema);
  return database;
}

void Create_File(const fs::path& path, const std::string& store_name, const std::string& store_id) {
  std::error_code error;
  if (fs::exists(fs::symlink_status(path, error))) Fail_Open(Reason::Exists, path);
  const fs::path draft = Draft_Of(path);
  try {
    const auto database = Begin_Draft(path);
    Fill_New(*database, store_name, store_id);
    database->Execute("COMMIT");
  } catch (const Automation_Error& failure) {
    Remove_File(draft);
    throw Store_Open_Error(Reason::Cannot_Write, path, failure.Description());
  } catch (const Store_Open_Error& failure) {
    Remove_File(draft);
    if (failure.Why() == Reason::Missing) Fail_Open(Reason::Cannot_Write, path, "there is no such folder");
    throw;
  }
  if (!Write_To_Disk(draft)) error = std::make_error_code(std::errc::io_error);
  // Unlike renaming, linking fails where a file has come up meanwhile. Not every file system has links.
  if (!error) fs::create_hard_link(draft, path, error);
  if (error && !fs::exists(fs::symlink_status(path))) fs::rename(draft, path, error);
  Remove_File(draft);
  if (error == std::errc::file_exists) Fail_Open(Reason::Exists, path);
  if (error) Fail_Open(Reason::Cannot_Write, path, error.message());
}

void Put_In_Place(std::unique_ptr<Database>& database, const fs::path& path) {
  const fs::path draft = Draft_Of(path);
  std::error_code error;
  const fs::path place = fs::canonical(path, error);
  if (!error) fs::permissions(draft, fs::status(place).permissions(), error);
  Keep_Owner(place, draft);
  if (!error && !Write_To_Disk(draft)) error = std::make_error_code(std::errc::io_error);
  if (error) Fail_Open(Reason::Cannot_Write, path, error.message());
  // Closing must not touch the log: its name is that of the new file's log.
  database->Execute("PRAGMA wal_checkpoint(TRUNCATE)");
  sqlite3_db_config(database->Connection(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
#ifdef _WIN32
  database.reset();
#endif
  fs::rename(draft, place, error);
  if (error && database != nullptr)
    sqlite3_db_config(database->Connection(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
  if (error) Fail_Open(Reason::Cannot_Write, path, error.message());
  database = Open_For_Writing(path).database;
}

}  // namespace tidyfold::sqlite
