#include "stores/sqlite/migration.h"

#include <string>
#include <string_view>

#include "errors/automation_error.h"
#include "stores/sqlite/packer.h"
#include "stores/sqlite/store_draft.h"
#include "stores/sqlite/store_file.h"

namespace tidyfold::sqlite {

namespace {

constexpr std::int64_t rows_per_progress = 100;

class Migration {
 public:
  Migration(Database& from, Database& to, const Store_Progress& progress)
      : from_(from), to_(to), progress_(progress) {
    Statement count(from, "SELECT COUNT(*) FROM item");
    count.Step();
    total_ = 2 * count.Integer(0);
  }

  // False if cancelled.
  bool Run() {
    return Copy("SELECT id, store_id FROM store", "INSERT INTO store (id, store_id) VALUES (?1, ?2)", 2) &&
           Copy("SELECT id, parent, name, item_type, removed FROM folder",
                "INSERT INTO folder (id, parent, name, item_type, removed) VALUES (?1, ?2, ?3, ?4, ?5)", 5) &&
           Copy(
               "SELECT id, folder, position, class, unread, received, last_modified, completed, due, ended, "
               "sender_or_text, subject, size FROM item ORDER BY id",
               "INSERT INTO item (id, folder, position, class, unread, received, last_modified, completed, "
               "due, ended, sender_or_text, subject, size) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, "
               "?11, ?12, ?13)",
               13, 1) &&
           Pack_Texts() &&
           Copy("SELECT item, number, name, size FROM attachment",
                "INSERT INTO attachment (item, number, name, size) VALUES (?1, ?2, ?3, ?4)", 4) &&
           Copy_Sequences();
  }

 private:
  bool Copy(std::string_view select, std::string_view insert, int columns, int share = 0) {
    Statement rows(from_, select), add(to_, insert);
    while (rows.Step()) {
      for (int column = 0; column < columns; ++column) add.Bind_Column(column + 1, rows, column);
      add.Run();
      if (!Tell(share)) return false;
    }
    return true;
  }

  bool Pack_Texts() {
    Statement rows(from_,
                   "SELECT c.item, c.sender, c.recipients, c.body, m.raw FROM content AS c LEFT JOIN message "
                   "AS m ON m.item = c.item ORDER BY c.item");
    Statement add(to_,
                  "INSERT INTO content (item, sender, sender_address, recipients, message_id, list_id, "
                  "answered, identity, body_bytes, packed) VALUES (?1, ?2, '', ?3, '', '', 0, 0, ?4, ?5)");
    while (rows.Step()) {
      const std::string_view body = rows.Text(3);
      add.Bind_Column(1, rows, 0).Bind_Column(2, rows, 1).Bind_Column(3, rows, 2);
      add.Bind(4, static_cast<std::int64_t>(body.size())).Bind_Blob(5, packer_.Pack(body, rows.Text(4)));
      add.Run();
      if (!Tell(1)) return false;
    }
    return true;
  }

  // The numbers that are never given again.
  bool Copy_Sequences() {
    Statement(to_, "DELETE FROM sqlite_sequence").Run();
    return Copy("SELECT name, seq FROM sqlite_sequence",
                "INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)", 2);
  }

  bool Tell(int share) {
    done_ += share;
    return !progress_ || done_ % rows_per_progress != 0 || progress_(done_, total_);
  }

  Database& from_;
  Database& to_;
  const Store_Progress& progress_;
  Packer packer_;
  std::int64_t done_ = 0, total_ = 0;
};

}  // namespace

void Migrate(std::unique_ptr<Database>& database, const std::filesystem::path& path,
             const Store_Progress& progress) {
  using Reason = Store_Open_Error::Reason;
  const std::filesystem::path draft_file = Draft_Of(path);
  try {
    {
      const auto draft = Begin_Draft(path);
      if (!Migration(*database, *draft, progress).Run()) Fail_Open(Reason::Cancelled, path);
      draft->Execute("COMMIT");
    }
    Put_In_Place(database, path);
  } catch (const Automation_Error& error) {
    Remove_File(draft_file);
    if (error.Number() == automation_error::corrupt_data)
      throw Store_Open_Error(Reason::Damaged, path, error.Description());
    throw Store_Open_Error(
        Reason::Cannot_Write, path,
        "The store \"" + Utf8(path) +
            "\" was written by an older version of Tidyfold and could not be brought up to "
            "date; it is as it was. " +
            error.Description());
  } catch (...) {
    Remove_File(draft_file);
    throw;
  }
}

}  // namespace tidyfold::sqlite
