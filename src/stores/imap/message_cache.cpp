#include "stores/imap/message_cache.h"

#include <cstdlib>
#include <map>
#include <optional>
#include <system_error>

#include "base/file_path.h"
#include "errors/automation_error.h"
#include "stores/sqlite/database.h"

namespace tidyfold::imap {

namespace {

using sqlite::Database;
using sqlite::Reading;
using sqlite::Statement;

constexpr const char* schema =
    "PRAGMA journal_mode=WAL; PRAGMA synchronous=OFF; PRAGMA busy_timeout=5000;"
    "CREATE TABLE IF NOT EXISTS mailboxes (id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE,"
    " uid_validity INTEGER NOT NULL, mod_seq INTEGER NOT NULL);"
    "CREATE TABLE IF NOT EXISTS messages (id INTEGER PRIMARY KEY, flags INTEGER NOT NULL,"
    " received INTEGER, size INTEGER NOT NULL, class INTEGER NOT NULL, attachments INTEGER NOT NULL,"
    " sender TEXT NOT NULL, subject TEXT NOT NULL);"
    "PRAGMA user_version=2;";

// A message's id: its mailbox, and its UID in the lower 32 bits.
std::int64_t Row_Id(std::int64_t mailbox, Uid uid) {
  return mailbox << 32 | std::int64_t{uid};
}

sqlite3* Open(const std::string& name) {
  sqlite3* connection = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int code = sqlite3_open_v2(name.c_str(), &connection, flags, nullptr);
  if (code == SQLITE_OK) return connection;
  sqlite3_close_v2(connection);
  return nullptr;
}

}  // namespace

namespace {

struct Opened {
  Opened(sqlite3* opened, const std::string& name) : database(opened, name) { database.Execute(schema); }
  Database database;
};

}  // namespace

struct Message_Cache::Connection : Opened {
  using Opened::Opened;
  Statement find{database, "SELECT id, uid_validity, mod_seq FROM mailboxes WHERE name = ?1"};
  Statement add{database, "INSERT INTO mailboxes (name, uid_validity, mod_seq) VALUES (?1, ?2, ?3)"};
  Statement set{database, "UPDATE mailboxes SET uid_validity = ?2, mod_seq = ?3 WHERE id = ?1"};
  Statement clear{database, "DELETE FROM messages WHERE id BETWEEN ?1 AND ?2"};
  Statement load{database, "SELECT id, flags FROM messages WHERE id BETWEEN ?1 AND ?2 ORDER BY id"};
  Statement put{database,
                "INSERT OR REPLACE INTO messages (id, flags, received, size, class, attachments, sender,"
                " subject) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"};
  Statement set_flags{database, "UPDATE messages SET flags = ?2 WHERE id = ?1"};
  Statement remove{database, "DELETE FROM messages WHERE id = ?1"};
  Statement rows{database,
                 "SELECT id, flags, received, size, class, attachments, sender, subject FROM messages"
                 " WHERE id BETWEEN ?1 AND ?2 ORDER BY id"};
  struct Known {
    std::int64_t id;
    std::uint32_t validity;
  };
  std::map<std::string, Known> known;
};

Message_Cache::Message_Cache(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  // It tells whose mail is about what.
  std::filesystem::permissions(file.parent_path(), std::filesystem::perms::owner_all, error);
  const std::string name = file.string();
  for (int attempt = 1; attempt <= 2 && connection_ == nullptr; ++attempt) {
    if (attempt == 2) {
      for (const char* end : {"", "-wal", "-shm"})
        std::filesystem::remove(std::filesystem::path(file) += end, error);
    }
    try {
      if (sqlite3* const opened = Open(name)) connection_ = std::make_unique<Connection>(opened, name);
    } catch (const Automation_Error&) {
    }
  }
  if (connection_ == nullptr) connection_ = std::make_unique<Connection>(Open(":memory:"), ":memory:");
}

Message_Cache::~Message_Cache() = default;

// Of a mailbox under another UIDVALIDITY all is thrown away.
std::int64_t Message_Cache::Number_Of(const Mailbox& mailbox) {
  Connection& c = *connection_;
  if (const auto found = c.known.find(mailbox.wire_name);
      found != c.known.end() && found->second.validity == mailbox.uid_validity)
    return found->second.id;
  std::int64_t id = 0;
  std::int64_t validity = 0;
  {
    Reading reading(c.find.Bind(1, mailbox.wire_name));
    if (reading.Next()) {
      id = c.find.Integer(0);
      validity = c.find.Integer(1);
    }
  }
  if (id == 0) {
    c.add.Bind(1, mailbox.wire_name)
        .Bind(2, std::int64_t{mailbox.uid_validity})
        .Bind(3, std::int64_t{0})
        .Run();
    id = sqlite3_last_insert_rowid(c.database.Connection());
  } else if (validity != mailbox.uid_validity) {
    c.clear.Bind(1, Row_Id(id, 0)).Bind(2, Row_Id(id, UINT32_MAX)).Run();
    c.set.Bind(1, id).Bind(2, std::int64_t{mailbox.uid_validity}).Bind(3, std::int64_t{0}).Run();
  }
  c.known[mailbox.wire_name] = {id, mailbox.uid_validity};
  return id;
}

void Message_Cache::Load(Mailbox& mailbox) {
  const std::lock_guard guard(lock_);
  Connection& c = *connection_;
  mailbox.Forget_Messages();
  const std::int64_t id = Number_Of(mailbox);
  {
    Reading reading(c.find.Bind(1, mailbox.wire_name));
    if (reading.Next()) mailbox.mod_seq = static_cast<std::uint64_t>(c.find.Integer(2));
  }
  Reading reading(c.load.Bind(1, Row_Id(id, 0)).Bind(2, Row_Id(id, UINT32_MAX)));
  while (reading.Next()) {
    mailbox.uids.push_back(static_cast<Uid>(c.load.Integer(0)));
    mailbox.flags.push_back(static_cast<std::uint8_t>(c.load.Integer(1) | Mailbox::has_row));
  }
}

namespace {

class Transaction {
 public:
  explicit Transaction(Database& database) : database_(database) { database.Execute("BEGIN IMMEDIATE"); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (!database_.In_Transaction()) return;
    try {
      database_.Execute("ROLLBACK");
    } catch (const Automation_Error&) {
    }
  }
  void Commit() { database_.Execute("COMMIT"); }

 private:
  Database& database_;
};

}  // namespace

void Message_Cache::Keep(const Mailbox& mailbox, const std::vector<Uid>& vanished,
                         const std::vector<std::pair<Uid, std::uint8_t>>& flags) {
  const std::lock_guard guard(lock_);
  Connection& c = *connection_;
  Transaction transaction(c.database);
  const std::int64_t id = Number_Of(mailbox);
  for (const Uid uid : vanished) c.remove.Bind(1, Row_Id(id, uid)).Run();
  for (const auto& [uid, bits] : flags)
    c.set_flags.Bind(1, Row_Id(id, uid)).Bind(2, std::int64_t{bits}).Run();
  c.set.Bind(1, id)
      .Bind(2, std::int64_t{mailbox.uid_validity})
      .Bind(3, static_cast<std::int64_t>(mailbox.mod_seq))
      .Run();
  transaction.Commit();
}

void Message_Cache::Keep(const Mailbox& mailbox, const std::vector<Message_Data>& rows) {
  if (rows.empty()) return;
  const std::lock_guard guard(lock_);
  Connection& c = *connection_;
  Transaction transaction(c.database);
  const std::int64_t id = Number_Of(mailbox);
  for (const Message_Data& row : rows) {
    c.put.Bind(1, Row_Id(id, row.uid)).Bind(2, std::int64_t{row.flags.value_or(0)});
    if (row.received) {
      c.put.Bind(3, *row.received);
    } else {
      c.put.Bind_Null(3);
    }
    c.put.Bind(4, row.size)
        .Bind(5, std::int64_t{row.item_class})
        .Bind(6, std::int64_t{row.has_attachments})
        .Bind(7, row.sender)
        .Bind(8, row.subject)
        .Run();
  }
  transaction.Commit();
}

std::vector<Message_Data> Message_Cache::Rows(const Mailbox& mailbox, Uid first, Uid last) {
  const std::lock_guard guard(lock_);
  Connection& c = *connection_;
  std::vector<Message_Data> rows;
  const std::int64_t id = Number_Of(mailbox);
  Reading reading(c.rows.Bind(1, Row_Id(id, first)).Bind(2, Row_Id(id, last)));
  while (reading.Next()) {
    Message_Data& row = rows.emplace_back();
    row.uid = static_cast<Uid>(c.rows.Integer(0));
    row.flags = static_cast<std::uint8_t>(c.rows.Integer(1));
    if (!c.rows.Is_Null(2)) row.received = c.rows.Integer(2);
    row.size = c.rows.Integer(3);
    row.item_class = static_cast<std::int32_t>(c.rows.Integer(4));
    row.has_attachments = c.rows.Integer(5) != 0;
    row.sender = c.rows.Text(6);
    row.subject = c.rows.Text(7);
  }
  return rows;
}

std::filesystem::path Message_Cache_File(const std::string& account) {
  const char* const cache = std::getenv("XDG_CACHE_HOME");
  const char* const home = std::getenv("HOME");
  const std::string folder = cache != nullptr && *cache == '/' ? std::string(cache)
                             : home != nullptr                 ? std::string(home) + "/.cache"
                                                               : std::string("/nonexistent");
  std::string name;
  for (const char c : account) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '.' || c == '-' || c == '@';
    if (plain) {
      name += c;
    } else {
      constexpr const char* digits = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(c);
      name += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return File_Path(folder) / "tidyfold" / "mail" / (name + ".headers");
}

}  // namespace tidyfold::imap
