// What a store file holds.
#pragma once

#include <cstdint>

namespace tidyfold::sqlite {

// Marks a file as a store of this program; stands in the header of the file. "Tdyf".
inline constexpr std::int32_t application_id = 0x54647966;

// Raised when an older program could no longer read or write the file rightly.
inline constexpr std::int32_t schema_version = 1;

// Items are narrow: what a list of items shows, in the order in which it is read. Positions grow along a
// folder and may have gaps; an item that comes in takes the next one. Dates are null where there is none.
// sender_or_text is the sender of mail and the first 20 characters of anything else. AUTOINCREMENT: a number
// never comes back, so an EntryID that somebody kept never leads to another item.
//
// A folder that was removed keeps its row, marked, until its items have been cleared away piece by piece: to
// delete some hundred thousand of them in one go would hold up the window for seconds.
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
  removed INTEGER NOT NULL DEFAULT 0
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
  size INTEGER NOT NULL
);
CREATE UNIQUE INDEX item_by_position ON item (folder, position);
CREATE TABLE content (
  item INTEGER PRIMARY KEY REFERENCES item (id) ON DELETE CASCADE,
  sender TEXT NOT NULL,
  recipients TEXT NOT NULL,
  body TEXT NOT NULL
);
CREATE TABLE message (
  item INTEGER PRIMARY KEY REFERENCES item (id) ON DELETE CASCADE,
  raw BLOB NOT NULL
);
CREATE TABLE attachment (
  item INTEGER NOT NULL REFERENCES item (id) ON DELETE CASCADE,
  number INTEGER NOT NULL,
  name TEXT NOT NULL,
  size INTEGER NOT NULL,
  PRIMARY KEY (item, number)
) WITHOUT ROWID;
)sql";

}  // namespace tidyfold::sqlite
