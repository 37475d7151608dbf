#include "stores/sqlite/store_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "errors/automation_error.h"
#include "stores/sqlite/store_schema.h"

namespace tidyfold::sqlite {

namespace {

using Reason = Store_Open_Error::Reason;
namespace fs = std::filesystem;

constexpr std::size_t header_bytes = 100;
constexpr std::size_t application_id_offset = 68;
constexpr std::string_view database_magic{"SQLite format 3\0", 16};

fs::path Beside(const fs::path& path, const char* ending) {
  fs::path beside = path;
  beside += ending;
  return beside;
}

bool Holds_Bytes(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return !error && size > 0;
}

// Throws the Store_Open_Error for a failed call while opening.
[[noreturn]] void Fail_Call(sqlite3* connection, int code, const fs::path& path) {
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      Fail_Open(Reason::Locked, path);
    case SQLITE_NOTADB:
      Fail_Open(Reason::Not_A_Store, path, "it is another program's file");
    case SQLITE_FULL:
      Fail_Open(Reason::Cannot_Write, path, "the disk is full");
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
      // The file itself is open; the log beside it cannot be opened.
      Fail_Open(Reason::Read_Only, path);
    case SQLITE_PERM:
    case SQLITE_AUTH:
      Fail_Open(Reason::No_Permission, path);
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:
      Fail_Open(Reason::Damaged, path, sqlite3_errmsg(connection));
    case SQLITE_NOMEM:
      throw std::bad_alloc();
    default:
      Fail_Open(Reason::Cannot_Read, path, sqlite3_errstr(code));
  }
}

sqlite3* Connect(const fs::path& path, const std::string& name, int flags) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &connection, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code == SQLITE_OK) {
    sqlite3_extended_result_codes(connection, 1);
    return connection;
  }
  // errno, or GetLastError on Windows.
  const std::error_code reason(sqlite3_system_errno(connection), std::system_category());
  const std::string detail = sqlite3_errmsg(connection);
  sqlite3_close(connection);
  if (reason == std::errc::permission_denied || reason == std::errc::operation_not_permitted)
    Fail_Open(Reason::No_Permission, path);
  if (reason == std::errc::no_such_file_or_directory) Fail_Open(Reason::Missing, path);
  Fail_Open(Reason::Cannot_Read, path, reason ? reason.message() : detail);
}

// SQLite's own file object. A second descriptor must never be opened: closing it would release all locks that
// this process holds on the file.
sqlite3_file* File_Of(sqlite3* connection) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  return file;
}

// Checks the header before SQLite touches what may be another program's file.
void Recognise(sqlite3* connection, const fs::path& path) {
  sqlite3_file* file = File_Of(connection);
  sqlite3_int64 size = 0;
  int code = file->pMethods->xFileSize(file, &size);
  if (code != SQLITE_OK) Fail_Call(connection, code, path);
  if (size == 0) Fail_Open(Reason::Not_A_Store, path, "it is empty");
  std::array<char, header_bytes> header{};
  if (size >= static_cast<sqlite3_int64>(header_bytes)) {
    code = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
    if (code != SQLITE_OK) Fail_Call(connection, code, path);
  }
  if (std::string_view(header.data(), database_magic.size()) != database_magic) {
    Fail_Open(Reason::Not_A_Store, path, "it is another program's file");
  }
  std::uint32_t id = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    id = id << 8 | static_cast<unsigned char>(header[application_id_offset + i]);
  }
  if (id != static_cast<std::uint32_t>(application_id)) {
    Fail_Open(Reason::Not_A_Store, path, "it is another program's database");
  }
}

void Run(Database& database, const fs::path& path, const char* sql) {
  const int code = sqlite3_exec(database.Connection(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail_Call(database.Connection(), code, path);
}

void Check_Version(Database& database, const fs::path& path) {
  sqlite3_stmt* statement = nullptr;
  int code = sqlite3_prepare_v2(database.Connection(), "PRAGMA user_version", -1, &statement, nullptr);
  const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement, &sqlite3_finalize);
  if (code == SQLITE_OK) code = sqlite3_step(statement);
  if (code != SQLITE_ROW) Fail_Call(database.Connection(), code, path);
  const int version = sqlite3_column_int(statement, 0);
  if (version > schema_version) {
    Fail_Open(
        Reason::Newer_Version, path,
        "format " + std::to_string(version) + "; this one knows up to " + std::to_string(schema_version));
  }
  if (version < 1) Fail_Open(Reason::Damaged, path, "it has no format number");
}

// Makes damaged files cause errors rather than wrong results.
constexpr const char* careful = "PRAGMA trusted_schema = OFF; PRAGMA cell_size_check = ON;";

// With a write-ahead log, a killed process loses no commits. A power failure can lose the last ones, but only
// as a whole. Deleted data is overwritten where this needs no additional writes.
constexpr const char* for_writing =
    "PRAGMA locking_mode = EXCLUSIVE; PRAGMA foreign_keys = ON; PRAGMA synchronous = NORMAL;"
    "PRAGMA secure_delete = FAST; PRAGMA cache_size = -16384; PRAGMA temp_store = MEMORY;";

std::unique_ptr<Database> Connect_For_Writing(const fs::path& path) {
  auto database = std::make_unique<Database>(Connect(path, Utf8(path), SQLITE_OPEN_READWRITE), Utf8(path));
  if (sqlite3_db_readonly(database->Connection(), "main") != 0) Fail_Open(Reason::Read_Only, path);
  return database;
}

void Check_Place(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) Fail_Open(Reason::Missing, path);
  if (status.type() == fs::file_type::none) {
    if (error == std::errc::permission_denied) Fail_Open(Reason::No_Permission, path);
    Fail_Open(Reason::Cannot_Read, path, error.message());
  }
  if (status.type() != fs::file_type::regular) Fail_Open(Reason::Not_A_Store, path, "it is no file");
}

std::string Immutable_Uri(const fs::path& path) {
  std::string uri = "file:";
  const std::u8string name = fs::absolute(path).generic_u8string();
  if (name.empty() || name.front() != u8'/') uri += '/';
  constexpr char digits[] = "0123456789ABCDEF";
  for (const char8_t byte : name) {
    const bool plain = (byte >= u8'a' && byte <= u8'z') || (byte >= u8'A' && byte <= u8'Z') ||
                       (byte >= u8'0' && byte <= u8'9') || byte == u8'/' || byte == u8'.' || byte == u8'-' ||
                       byte == u8'_' || byte == u8':';
    if (plain) {
      uri += static_cast<char>(byte);
    } else {
      uri += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return uri + "?immutable=1";
}

}  // namespace

std::string Utf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

void Fail_Open(Reason reason, const fs::path& path, const std::string& detail) {
  const std::string name = "\"" + Utf8(path) + "\"";
  const std::string store = "The store " + name + " ";
  const std::string why = detail.empty() ? "" : " (" + detail + ")";
  std::string text;
  switch (reason) {
    case Reason::Missing:
      text = store + "does not exist. Check its name and the folder that it lies in.";
      break;
    case Reason::Exists:
      text = name + " exists already. Choose another name for the new store, or move that file away.";
      break;
    case Reason::Not_A_Store:
      text = name + " is not a Tidyfold store: " + detail +
             ". Choose a store file; mail files of other programs can be imported into one.";
      break;
    case Reason::Damaged:
      text = store + "is damaged" + why + ". Restore it from a backup copy.";
      break;
    case Reason::Read_Only:
      text = store +
             "can only be read, but it must be written. Make the file and its folder writable, or copy the "
             "store to a place where you may write.";
      break;
    case Reason::No_Permission:
      text = "You have no permission to open " + name +
             ". Change the permissions of the file and its folder, or ask the owner to.";
      break;
    case Reason::Locked:
      text = store + "is open in another Tidyfold. Close it there and try again.";
      break;
    case Reason::Newer_Version:
      text = store + "was written by a newer version of Tidyfold" + why + ". Open it with that version.";
      break;
    case Reason::Cannot_Read:
      text = store + "could not be read" + why +
             ". Check the disk or the network share that it lies on, and try again.";
      break;
    case Reason::Cannot_Write:
      text = store + "could not be written" + why + ". Check the folder and the room on its disk.";
      break;
  }
  throw Store_Open_Error(reason, path, text);
}

void Remove_File(const fs::path& path) {
  std::error_code ignored;
  for (const char* ending : {"", "-journal", "-wal"}) fs::remove(Beside(path, ending), ignored);
}

std::unique_ptr<Database> Open_For_Writing(const fs::path& path) {
  Check_Place(path);
  auto database = Connect_For_Writing(path);
  Recognise(database->Connection(), path);
  Run(*database, path, careful);
  Run(*database, path, for_writing);
  Check_Version(*database, path);
  // In case another tool has changed the journal mode.
  Run(*database, path, "PRAGMA journal_mode = WAL; BEGIN IMMEDIATE; ROLLBACK;");
  return database;
}

std::unique_ptr<Database> Create_File(const fs::path& path, const std::string& store_name,
                                      const std::string& store_id) {
  // "x" fails if the file exists. (A new file can have no locks, so that closing it is safe.)
#ifdef _WIN32
  std::FILE* file = _wfopen(path.c_str(), L"wbx");
#else
  std::FILE* file = std::fopen(path.c_str(), "wbx");
#endif
  if (file == nullptr) {
    switch (errno) {
      case EEXIST:
        Fail_Open(Reason::Exists, path);
      case EACCES:
      case EPERM:
        Fail_Open(Reason::No_Permission, path);
      case EROFS:
        Fail_Open(Reason::Read_Only, path);
      default:
        Fail_Open(Reason::Cannot_Write, path, std::strerror(errno));
    }
  }
  std::fclose(file);
  try {
    auto database = Connect_For_Writing(path);
    Run(*database, path, careful);
    Run(*database, path, for_writing);
    // Lets Compact give room back in place. Cannot be changed later.
    Run(*database, path, "PRAGMA auto_vacuum = INCREMENTAL");
    // One transaction, before switching to the write-ahead log: the header that identifies the file as a
    // store must be in the file itself, not in its log.
    Run(*database, path, "BEGIN IMMEDIATE");
    Run(*database, path, ("PRAGMA application_id = " + std::to_string(application_id)).c_str());
    Run(*database, path, ("PRAGMA user_version = " + std::to_string(schema_version)).c_str());
    Run(*database, path, schema);
    Run(*database, path, content_schema);
    Statement(*database, "INSERT INTO store (id, store_id) VALUES (1, ?1)").Bind(1, store_id).Run();
    Statement(*database, "INSERT INTO folder (parent, name, item_type) VALUES (NULL, ?1, 0)")
        .Bind(1, store_name)
        .Run();
    Run(*database, path, "COMMIT");
    Run(*database, path, "PRAGMA journal_mode = WAL");
    return database;
  } catch (const Automation_Error& error) {
    Remove_File(path);
    throw Store_Open_Error(Reason::Cannot_Write, path, error.Description());
  } catch (...) {
    Remove_File(path);
    throw;
  }
}

Reader_File::Reader_File(const fs::path& path) {
  Check_Place(path);
  // A store that was closed properly has no log. Opened as immutable, it is read without creating any file.
  // SQLite takes no lock then, so one is taken here to keep writers out.
  Connect_For_Reading(path, Immutable_Uri(path), SQLITE_OPEN_URI);
  sqlite3_file* file = File_Of(database_->Connection());
  const int code = file->pMethods->xLock(file, SQLITE_LOCK_SHARED);
  if (code != SQLITE_OK) Fail_Call(database_->Connection(), code, path);
  if (Holds_Bytes(Beside(path, "-wal")) || Holds_Bytes(Beside(path, "-journal"))) Read_With_Log(path);
  try {
    Check_Version(*database_, path);
  } catch (...) {
    Clean_Up();
    throw;
  }
}

void Reader_File::Connect_For_Reading(const fs::path& path, const std::string& name, int flags) {
  database_ = std::make_unique<Database>(Connect(path, name, SQLITE_OPEN_READONLY | flags), Utf8(path));
  Recognise(database_->Connection(), path);
  Run(*database_, path, careful);
}

void Reader_File::Read_With_Log(const fs::path& path) {
  // A writer crashed. Its log is part of the store and is left for the next writer to merge.
  database_.reset();
  Connect_For_Reading(path, Utf8(path), 0);
  sqlite3_db_config(database_->Connection(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  const fs::path index = Beside(path, "-shm");
  std::error_code error;
  if (!fs::exists(index, error)) left_over_ = index;
  try {
    // Opens the read transaction in which everything is read.
    Run(*database_, path, "BEGIN; SELECT 1 FROM sqlite_schema;");
  } catch (...) {
    Clean_Up();
    throw;
  }
}

void Reader_File::Clean_Up() {
  database_.reset();
  std::error_code ignored;
  if (!left_over_.empty()) fs::remove(left_over_, ignored);
}

Reader_File::~Reader_File() {
  Clean_Up();
}

}  // namespace tidyfold::sqlite
