// The importer of folders on disk, in all the ways in which mail programs keep theirs:
//
//   Maildirs within Maildirs, or beside each other as ".Parent.Child" (Maildir++);
//   mbox files, with what lies below "Inbox" in "Inbox.sbd" or ".Inbox.directory";
//   Apple's "Inbox.mbox", which holds an mbox file or messages some levels down;
//   plain folders with messages, mbox files, calendars, address books or Outlook data files in them.
#pragma once

#include <filesystem>

#include "import/import_run.h"

namespace tidyfold {

// Whether there is anything to import in the directory or below it.
bool Is_Tree(const std::filesystem::path& directory);

// A file or folder that cannot be read is a failure of its own, and the rest goes in. Files of no kind that
// is known are left out, except those in which mail programs keep their indexes.
void Import_Tree(const std::filesystem::path& source, Import_Run& run);

// The same without what lies below the directory.
void Import_Directory(const std::filesystem::path& directory, Import_Run& run);

}  // namespace tidyfold
