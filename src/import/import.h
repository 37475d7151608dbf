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
  std::int64_t found = 0;  // always imported + left out + failed
  std::int64_t imported = 0;
  std::int64_t failed = 0;
  std::vector<Import_Failure> failures;  // what could not be read
  std::vector<Import_Failure> left_out;  // what does not belong into a store, such as deleted mail
  std::vector<Import_Failure> doubts;    // what went in, but perhaps not as it was
  // The progress callback returned false: the store is unchanged, and the counts are 0.
  bool cancelled = false;
};

enum class Source_Kind { Pst, Mbox, Maildir, Eml };  // Pst: PST, OST and PAB

// Gets the number of items found so far and the total, if known. Returns false to cancel. Called on the
// importing thread, every 10 to 20 ms.
using Import_Progress = std::function<bool(std::int64_t found, std::optional<std::int64_t> total)>;

struct Import_Options {
  // The folder that mbox, Maildir and EML go into, by names from below the top folder down; created when
  // missing. Empty names stand for the top folder itself, none for a folder named after the source.
  // A PST brings its own tree.
  std::optional<std::vector<std::string>> folder_path;
  Import_Progress progress;  // may be empty
};

// Whether this build has importers. Without them, every source is an Import_Error.
bool Can_Import();

// Goes by content, never by name. Throws Import_Error if the source is missing, empty or of no known kind.
Source_Kind Detect_Source(const std::filesystem::path& source);

// Imports one source, all of it between one Begin and one Commit: after an error or a cancel the store is as
// it was. Single items that cannot be read are counted and named in the report, and the rest goes in. Throws
// Import_Error where the source as a whole cannot be read, Automation_Error where the store cannot be
// written.
Import_Report Import_Source(const std::filesystem::path& source, Store_Writer& writer,
                            const Import_Options& options = {});

}  // namespace tidyfold
