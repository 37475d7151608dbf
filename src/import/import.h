// Brings mail and calendar data that other programs wrote into a store.
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "outlook/store_writer.h"

namespace tidyfold {

// A source that cannot be imported. The text names the file and suggests what to do.
class Import_Error : public std::exception {
 public:
  explicit Import_Error(const std::string& text);
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// An item that was found and did not go in.
struct Import_Failure {
  std::string where;  // its file, or its folder and position
  std::string why;
};

struct Import_Report {
  std::string source;
  std::int64_t found = 0;  // always imported + there already + left out + failed
  std::int64_t imported = 0;
  std::int64_t there_already = 0;
  std::int64_t failed = 0;
  std::vector<Import_Failure> failures;  // what could not be read; one for each that failed
  std::vector<Import_Failure> left_out;  // what does not belong into a store, such as deleted mail
  std::vector<Import_Failure> doubts;    // what went in, but perhaps not as it was
  // The progress callback returned false. What had been imported by then stays.
  bool cancelled = false;
  // The error that ended the import on its way, where not empty. What had been committed by then stays.
  std::string ended_by;
};

// "FOUND items found, IMPORTED imported, FAILED failed", and where not 0 ", N there already", ", N left out".
std::string Counts_Of(const Import_Report& report);
// A line for each failure and each doubt, and one for each reason for which items were left out.
std::vector<std::string> Details_Of(const Import_Report& report);

enum class Source_Kind {
  Pst,       // PST, OST and PAB
  Mbox,      // many messages in one file
  Message,   // one message: RFC 5322, with or without Apple's frame (.emlx)
  Msg,       // one item in a compound file
  Calendar,  // iCalendar
  Contacts,  // vCard
  Tree       // a folder with any of these in it, Maildirs included
};

// Gets the number of items found so far and the total, if known. Returns false to cancel. Called on the
// importing thread, every 10 to 20 ms.
using Import_Progress = std::function<bool(std::int64_t found, std::optional<std::int64_t> total)>;

struct Import_Options {
  // The folder that a source goes into, by names from below the top folder down; created when missing. No
  // names stand for the top folder itself, nothing for a folder named after the source. What brings a tree
  // of folders brings it below that folder.
  std::optional<std::vector<std::string>> folder_path;
  // Folders of the source and of the store that have the same name become one, the store's own Inbox, Deleted
  // Items and so on included. Only without folder_path.
  bool merge = false;
  // Takes what is there already once more.
  bool again = false;
  Import_Progress progress;  // may be empty
};

// Whether this build has importers. Without them, every source is an Import_Error.
bool Can_Import();

// Goes by content, never by name. Throws Import_Error if the source is missing, empty or of no known kind.
Source_Kind Detect_Source(const std::filesystem::path& source);

// Imports one source. What the store holds already is left out, however it got there. Single items that
// cannot be read are counted and named in the report, and the rest goes in. Commits in portions: after a
// cancel or an error, what went in before stays, and importing the source again goes on where it ended.
// Throws before anything has been committed: Import_Error where the source as a whole cannot be read,
// Automation_Error where the store cannot be written.
Import_Report Import_Source(const std::filesystem::path& source, Store_Writer& writer,
                            const Import_Options& options = {});

}  // namespace tidyfold
