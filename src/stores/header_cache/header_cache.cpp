#include "stores/header_cache/header_cache.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>
#include <vector>

#include "base/file_path.h"

namespace tidyfold {

namespace {

// "Tdyh", in the header of the file.
constexpr int application_id = 0x54647968;
constexpr int version = 2;
constexpr std::size_t rows_at_once = 64;

std::uint64_t Hash(std::string_view text, std::uint64_t hash = 0xCBF29CE484222325U) {
  for (const char character : text) {
    hash ^= static_cast<unsigned char>(character);
    hash *= 0x100000001B3U;
  }
  return hash;
}

struct Row_Head {
  std::uint64_t check = 0;  // over the id and all that follows
  std::int64_t stamp = 0, size = 0, marks = 0;
  double received = 0;
  std::int32_t item_class = 0;
  std::uint32_t subject_length = 0;
  std::uint64_t has_attachments = 0;
};
constexpr std::size_t check_length = sizeof(std::uint64_t);

std::uint64_t Check_Of(std::string_view id, std::string_view row) {
  return Hash(row.substr(check_length), Hash(id));
}

std::string Packed(std::string_view id, const Cached_Header& header) {
  Row_Head head;
  head.stamp = header.stamp;
  head.size = header.size;
  head.marks = header.marks;
  head.received = header.received;
  head.item_class = header.item_class;
  head.has_attachments = header.has_attachments ? 1 : 0;
  head.subject_length = static_cast<std::uint32_t>(header.subject.size());
  std::string row(sizeof head, '\0');
  std::memcpy(row.data(), &head, sizeof head);
  row += header.subject;
  row += header.sender;
  head.check = Check_Of(id, row);
  std::memcpy(row.data(), &head.check, check_length);
  return row;
}

// Nothing for a row that is not exactly what was put under this id.
std::optional<Cached_Header> Unpacked(std::string_view id, std::string_view row) {
  Row_Head head;
  if (row.size() < sizeof head) return std::nullopt;
  std::memcpy(&head, row.data(), sizeof head);
  const std::string_view texts = row.substr(sizeof head);
  if (head.check != Check_Of(id, row) || head.subject_length > texts.size()) return std::nullopt;
  Cached_Header header;
  header.stamp = head.stamp;
  header.size = head.size;
  header.marks = head.marks;
  header.received = head.received;
  header.item_class = head.item_class;
  header.has_attachments = head.has_attachments != 0;
  header.subject = texts.substr(0, head.subject_length);
  header.sender = texts.substr(head.subject_length);
  return header;
}

void Bind(sqlite3_stmt& statement, int parameter, std::string_view bytes) {
  sqlite3_bind_blob64(&statement, parameter, bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_STATIC);
}

std::string_view Bytes(sqlite3_stmt& statement, int column) {
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(&statement, column));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_column_bytes(&statement, column))};
}

// The file and what SQLite keeps beside it.
void Remove_Cache(const std::filesystem::path& file) {
  for (const char* ending : {"", "-wal", "-shm", "-journal"}) {
    std::error_code ignored;
    std::filesystem::path path = file;
    path += ending;
    std::filesystem::remove(path, ignored);
  }
}

}  // namespace

std::filesystem::path Header_Cache_Folder() {
#ifdef _WIN32
  const char* const local = std::getenv("LOCALAPPDATA");
  return local == nullptr ? std::filesystem::path() : std::filesystem::path(local) / "Tidyfold" / "headers";
#else
  const char* const cache = std::getenv("XDG_CACHE_HOME");
  std::filesystem::path folder = cache == nullptr ? "" : cache;
  // The XDG Base Directory rules ignore a relative one.
  if (!folder.is_absolute()) {
    const char* const home = std::getenv("HOME");
    if (home == nullptr || !std::filesystem::path(home).is_absolute()) return {};
    folder = std::filesystem::path(home) / ".cache";
  }
  return folder / "tidyfold" / "headers";
#endif
}

Header_Cache::Header_Cache(const std::filesystem::path& folder, const std::string& store) {
  if (folder.empty()) return;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) return;
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
  std::array<char, 2 * sizeof(std::uint64_t) + 1> name = {};
  std::snprintf(name.data(), name.size(), "%016llx", static_cast<unsigned long long>(Hash(store)));
  file_ = folder / (std::string(name.data()) + ".cache");
  // A damaged file, one of another version and one of another store with the same hash are made anew.
  if (!Open(store) && damaged_) {
    connection_.reset();
    Remove_Cache(file_);
    damaged_ = false;
    Open(store);
  }
}

Header_Cache::~Header_Cache() {
  Keep();
  find_.reset();
  put_.reset();
  put_many_.reset();
  forget_.reset();
  connection_.reset();
  if (damaged_) Remove_Cache(file_);
}

bool Header_Cache::Open(const std::string& store) {
  sqlite3* connection = nullptr;
  const std::string name = [&] {
    const std::u8string text = file_.u8string();
    return std::string(text.begin(), text.end());
  }();
  const int opened = sqlite3_open_v2(
      name.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  connection_.reset(connection);
  if (opened != SQLITE_OK) {
    connection_.reset();
    return false;
  }
#ifndef _WIN32
  std::error_code ignored;
  std::filesystem::permissions(
      file_, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
#endif
  // A crash of the machine may damage the file; that is found out by each row's check, or by SQLite.
  const bool ready =
      Run("PRAGMA page_size = 16384; PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = WAL; PRAGMA "
          "synchronous = OFF;"
          " PRAGMA cache_size = -8000; BEGIN EXCLUSIVE;"
          " CREATE TABLE IF NOT EXISTS folder (id INTEGER PRIMARY KEY, name BLOB UNIQUE NOT NULL,"
          " generation INTEGER NOT NULL, state BLOB NOT NULL DEFAULT '');"
          " CREATE TABLE IF NOT EXISTS header (folder INTEGER NOT NULL, id BLOB NOT NULL, row BLOB NOT NULL,"
          " PRIMARY KEY (folder, id)) WITHOUT ROWID;"
          " CREATE TABLE IF NOT EXISTS store (name BLOB NOT NULL); COMMIT");
  if (!ready) return false;
  Statement about = Prepare("SELECT (SELECT name FROM store), (SELECT COUNT(*) FROM store)");
  if (about == nullptr || Step(*about) != SQLITE_ROW) return false;
  const bool is_new = sqlite3_column_int(about.get(), 1) == 0;
  if (is_new) {
    about.reset();
    Statement name_it = Prepare("INSERT INTO store (name) VALUES (?)");
    if (name_it == nullptr) return false;
    Bind(*name_it, 1, store);
    const std::string mark = "PRAGMA application_id = " + std::to_string(application_id) +
                             "; PRAGMA user_version = " + std::to_string(version);
    if (Step(*name_it) != SQLITE_DONE || !Run(mark.c_str())) return false;
  } else {
    Statement format =
        Prepare("SELECT application_id, user_version FROM pragma_application_id, pragma_user_version");
    const bool same = Bytes(*about, 0) == store && format != nullptr && Step(*format) == SQLITE_ROW &&
                      sqlite3_column_int(format.get(), 0) == application_id &&
                      sqlite3_column_int(format.get(), 1) == version;
    if (!same) {
      damaged_ = true;
      return false;
    }
  }
  find_ = Prepare("SELECT id, row FROM header WHERE folder = ? AND id >= ? ORDER BY id");
  std::string put = "INSERT OR REPLACE INTO header (folder, id, row) VALUES (?, ?, ?)";
  put_ = Prepare(put.c_str());
  for (std::size_t row = 1; row < rows_at_once; ++row) put += ", (?, ?, ?)";
  put_many_ = Prepare(put.c_str());
  forget_ = Prepare("DELETE FROM header WHERE folder = ? AND id = ?");
  return find_ != nullptr && put_ != nullptr && put_many_ != nullptr && forget_ != nullptr;
}

// Nothing is kept from then on. Damage removes the file.
void Header_Cache::Give_Up() {
  const int code = connection_ == nullptr ? SQLITE_OK : sqlite3_errcode(connection_.get());
  damaged_ = damaged_ || code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR;
  place_.reset();
  find_.reset();
  put_.reset();
  put_many_.reset();
  forget_.reset();
  connection_.reset();
}

bool Header_Cache::Run(const char* sql) {
  if (connection_ == nullptr) return false;
  if (sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK) return true;
  Give_Up();
  return false;
}

Header_Cache::Statement Header_Cache::Prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (connection_ == nullptr) return nullptr;
  if (sqlite3_prepare_v2(connection_.get(), sql, -1, &statement, nullptr) != SQLITE_OK) Give_Up();
  return Statement(statement);
}

int Header_Cache::Step(sqlite3_stmt& statement) {
  const int code = sqlite3_step(&statement);
  if (code != SQLITE_ROW && code != SQLITE_DONE)
    damaged_ = damaged_ || code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
  return code;
}

bool Header_Cache::Begin() {
  if (connection_ == nullptr) return false;
  if (!in_transaction_) in_transaction_ = Run("BEGIN");
  return in_transaction_;
}

void Header_Cache::Keep() {
  Settle();
  if (connection_ != nullptr && std::exchange(in_transaction_, false)) Run("COMMIT");
}

std::int64_t Header_Cache::Folder(const std::string& name, std::int64_t generation) {
  if (!Begin()) return 0;
  Statement find = Prepare("SELECT id, generation FROM folder WHERE name = ?");
  if (find == nullptr) return 0;
  Bind(*find, 1, name);
  std::int64_t id = 0;
  if (Step(*find) == SQLITE_ROW) {
    id = sqlite3_column_int64(find.get(), 0);
    if (sqlite3_column_int64(find.get(), 1) == generation) return id;
  }
  find.reset();
  Settle();
  if (id != 0) {
    for (const char* sql : {"DELETE FROM header WHERE folder = ?", "DELETE FROM folder WHERE id = ?"}) {
      Statement forget = Prepare(sql);
      if (forget == nullptr) return 0;
      sqlite3_bind_int64(forget.get(), 1, id);
      Step(*forget);
    }
  }
  Statement add = Prepare("INSERT INTO folder (name, generation) VALUES (?, ?)");
  if (add == nullptr) return 0;
  Bind(*add, 1, name);
  sqlite3_bind_int64(add.get(), 2, generation);
  return Step(*add) == SQLITE_DONE ? sqlite3_last_insert_rowid(connection_.get()) : 0;
}

std::string Header_Cache::State(std::int64_t folder) {
  Statement find = Prepare("SELECT state FROM folder WHERE id = ?");
  if (find == nullptr) return {};
  sqlite3_bind_int64(find.get(), 1, folder);
  return Step(*find) == SQLITE_ROW ? std::string(Bytes(*find, 0)) : std::string();
}

void Header_Cache::Set_State(std::int64_t folder, const std::string& state) {
  if (!Begin()) return;
  Statement set = Prepare("UPDATE folder SET state = ? WHERE id = ?");
  if (set == nullptr) return;
  Bind(*set, 1, state);
  sqlite3_bind_int64(set.get(), 2, folder);
  Step(*set);
}

void Header_Cache::Settle() {
  Leave();
  const std::vector<Waiting> waiting = std::exchange(waiting_, {});
  if (waiting.empty() || !Begin()) return;
  const bool together = waiting.size() == rows_at_once;
  sqlite3_stmt& put = together ? *put_many_ : *put_;
  int parameter = 0;
  for (const Waiting& each : waiting) {
    sqlite3_bind_int64(&put, ++parameter, each.folder);
    Bind(put, ++parameter, each.id);
    Bind(put, ++parameter, each.row);
    if (together && &each != &waiting.back()) continue;
    Step(put);
    sqlite3_reset(&put);
    parameter = 0;
  }
}

void Header_Cache::Leave() {
  if (place_.has_value() && find_ != nullptr) sqlite3_reset(find_.get());
  place_.reset();
}

// A step to the next row costs a fraction of a search.
bool Header_Cache::Go_To(std::int64_t folder, std::string_view id) {
  constexpr int most_steps = 4;
  const auto read_place = [&](int code) {
    place_->at_end = code == SQLITE_DONE;
    place_->row = code == SQLITE_ROW ? Bytes(*find_, 0) : std::string_view();
    return code == SQLITE_ROW || code == SQLITE_DONE;
  };
  if (place_.has_value() && place_->folder == folder && place_->sought <= id) {
    for (int steps = 0; steps < most_steps && !place_->at_end && place_->row < id; ++steps) {
      place_->sought = place_->row + '\0';  // the next id that there could be
      if (!read_place(Step(*find_))) return Leave(), false;
    }
    if (place_->at_end || place_->row >= id) return !place_->at_end && place_->row == id;
  }
  Leave();
  sqlite3_bind_int64(find_.get(), 1, folder);
  sqlite3_bind_blob64(find_.get(), 2, id.empty() ? "" : id.data(), id.size(), SQLITE_TRANSIENT);
  place_.emplace(Place{folder, std::string(id), {}, false});
  if (!read_place(Step(*find_))) return Leave(), false;
  return !place_->at_end && place_->row == id;
}

std::optional<Cached_Header> Header_Cache::Find(std::int64_t folder, std::string_view id) {
  if (!waiting_.empty()) Settle();
  if (connection_ == nullptr || !Go_To(folder, id)) return std::nullopt;
  return Unpacked(id, Bytes(*find_, 1));
}

void Header_Cache::For_Each(
    std::int64_t folder, const std::function<void(std::string_view id, const Cached_Header& header)>& take) {
  Settle();
  Statement all = Prepare("SELECT id, row FROM header WHERE folder = ? ORDER BY id");
  if (all == nullptr) return;
  sqlite3_bind_int64(all.get(), 1, folder);
  while (Step(*all) == SQLITE_ROW) {
    const std::string_view id = Bytes(*all, 0);
    if (const auto header = Unpacked(id, Bytes(*all, 1))) take(id, *header);
  }
}

std::int64_t Header_Cache::Count(std::int64_t folder) {
  Settle();
  Statement count = Prepare("SELECT COUNT(*) FROM header WHERE folder = ?");
  if (count == nullptr) return 0;
  sqlite3_bind_int64(count.get(), 1, folder);
  return Step(*count) == SQLITE_ROW ? sqlite3_column_int64(count.get(), 0) : 0;
}

void Header_Cache::Put(std::int64_t folder, std::string_view id, const Cached_Header& header) {
  if (connection_ == nullptr) return;
  Leave();
  waiting_.push_back({folder, std::string(id), Packed(id, header)});
  if (waiting_.size() == rows_at_once) Settle();
}

void Header_Cache::Forget(std::int64_t folder, std::string_view id) {
  Settle();
  if (!Begin()) return;
  sqlite3_bind_int64(forget_.get(), 1, folder);
  Bind(*forget_, 2, id);
  Step(*forget_);
  sqlite3_reset(forget_.get());
}

void Header_Cache::Forget_Others(std::int64_t folder, const std::function<bool(std::string_view id)>& stays) {
  Settle();
  std::vector<std::string> gone;
  {
    Statement all = Prepare("SELECT id FROM header WHERE folder = ?");
    if (all == nullptr) return;
    sqlite3_bind_int64(all.get(), 1, folder);
    while (Step(*all) == SQLITE_ROW)
      if (const std::string_view id = Bytes(*all, 0); !stays(id)) gone.emplace_back(id);
  }
  for (const std::string& id : gone) Forget(folder, id);
}

}  // namespace tidyfold
