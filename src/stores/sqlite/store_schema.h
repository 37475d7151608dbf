// The tables of a store file.
#pragma once

#include <cstdint>

namespace tidyfold::sqlite {

// Identifies store files in the database header: "Tdyf".
inline constexpr std::int32_t application_id = 0x54647966;

// To be raised when older versions of the program could not use the file any more.
inline constexpr std::int32_t schema_version = 2;

// Item rows hold only what a list of items shows. Positions increase along a folder and may have gaps; a new
// item gets the next one. Missing dates are null. sender_or_text is the sender of mail and the first 20
// characters of other items; the content of mail has an empty sender. With AUTOINCREMENT no number is used
// twice, so that an old EntryID never leads to another item.
//
// packed holds the body's body_bytes bytes and then the item's raw form, as Packer makes them: most of a body
// is also in the raw form and takes no room of its own. An attachment's packed content is null where the raw
// form holds it. content_key is the hash of Item_Key, as a signed number.
//
// A removed folder keeps its row, marked as removed, until its items have been deleted in small steps.
// Deleting some hundred thousand items at once would block the window for seconds.
inline constexpr const char* schema = R"sql(
CREATE TABLE store (
  id INTEGER PRIMARY KEY CHECK (id = 1),
  store_id TEXT NOT NULL
);
CREATE TABLE folder (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  parent INTEGER REFERENCES folder (id),
  name TEXT NOT NULL,
  item_type INTEGER NOT NULL,
  removed INTEGER NOT NULL DEFAULT 0,
  protected INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX folder_by_parent ON folder (parent);
CREATE TABLE item (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  folder INTEGER NOT NULL REFERENCES folder (id),
  position INTEGER NOT NULL,
  class INTEGER NOT NULL,
  sender_or_text TEXT NOT NULL,
  subject TEXT NOT NULL,
  received REAL,
  last_modified REAL,
  completed REAL,
  due REAL,
  ended REAL,
  unread INTEGER NOT NULL,
  size INTEGER NOT NULL,
  flag INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX item_by_position ON item (folder, position);
)sql";

// The tables that format 1 did not have, or had with other columns.
inline constexpr const char* content_schema = R"sql(
CREATE TABLE content (
  item INTEGER PRIMARY KEY REFERENCES item (id) ON DELETE CASCADE,
  sender TEXT NOT NULL,
  sender_address TEXT NOT NULL,
  recipients TEXT NOT NULL,
  message_id TEXT NOT NULL,
  list_id TEXT NOT NULL,
  answered INTEGER NOT NULL,
  content_key INTEGER NOT NULL,
  body_bytes INTEGER NOT NULL,
  packed BLOB NOT NULL
);
CREATE INDEX content_by_key ON content (content_key);
CREATE TABLE attachment (
  item INTEGER NOT NULL REFERENCES item (id) ON DELETE CASCADE,
  number INTEGER NOT NULL,
  name TEXT NOT NULL,
  size INTEGER NOT NULL,
  packed BLOB,
  PRIMARY KEY (item, number)
) WITHOUT ROWID;
)sql";

}  // namespace tidyfold::sqlite
