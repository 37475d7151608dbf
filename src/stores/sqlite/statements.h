// The prepared statements of a store.
#pragma once

#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

// Preparing them when the store is opened also checks that its tables are the right ones.
struct Statements {
  explicit Statements(Database& database)
      : begin(database, "BEGIN IMMEDIATE"),
        commit(database, "COMMIT"),
        save(database, "SAVEPOINT change"),
        release(database, "RELEASE change"),
        locate(database, "SELECT folder, position FROM item WHERE id = ?1"),
        content(database,
                "SELECT sender, sender_address, recipients, message_id, list_id, answered, body_bytes, "
                "packed, identity FROM content WHERE item = ?1"),
        alike(database, "SELECT COUNT(*) FROM content WHERE identity = ?1 AND identity <> 0"),
        unknown(database,
                "SELECT (SELECT COUNT(*) FROM item) - (SELECT COUNT(*) FROM content WHERE identity <> 0)"),
        without_identity(database,
                         "SELECT item FROM content WHERE identity = 0 AND item > ?1 ORDER BY item LIMIT ?2"),
        set_identity(database, "UPDATE content SET identity = ?2 WHERE item = ?1"),
        attachments(database, "SELECT name, size, packed FROM attachment WHERE item = ?1 ORDER BY number"),
        move(database, "UPDATE item SET folder = ?2, position = ?3 WHERE id = ?1"),
        remove(database, "DELETE FROM item WHERE id = ?1"),
        mark_removed(database, "UPDATE folder SET removed = 1, parent = NULL WHERE id = ?1"),
        clear_items(database,
                    "DELETE FROM item WHERE id IN (SELECT id FROM item WHERE folder = ?1 LIMIT ?2)"),
        clear_folder(database, "DELETE FROM folder WHERE id = ?1"),
        add_folder(database, "INSERT INTO folder (id, parent, name, item_type) VALUES (?1, ?2, ?3, ?4)"),
        add_item(
            database,
            "INSERT INTO item (id, folder, position, class, unread, received, last_modified, completed, "
            "due, ended, sender_or_text, subject, size, flag) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, "
            "?10, ?11, ?12, ?13, ?14)"),
        add_content(database,
                    "INSERT INTO content (item, sender, sender_address, recipients, message_id, list_id, "
                    "answered, identity, body_bytes, packed) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, "
                    "?9, ?10)"),
        add_attachment(
            database,
            "INSERT INTO attachment (item, number, name, size, packed) VALUES (?1, ?2, ?3, ?4, ?5)"),
        protect(database, "UPDATE folder SET protected = ?2 WHERE id = ?1") {}

  Statement begin, commit, save, release, locate, content, alike, unknown, without_identity, set_identity,
      attachments, move, remove, mark_removed, clear_items, clear_folder, add_folder, add_item, add_content,
      add_attachment, protect;
};

}  // namespace tidyfold::sqlite
