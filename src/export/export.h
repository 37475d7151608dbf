// Writes what is in a store in forms that other programs read, a folder for a folder.
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

// How mail is written. Appointments and tasks are always iCalendar (RFC 5545), contacts and distribution
// lists vCard (RFC 6350), notes and journal entries text, each in a file of its own.
enum class Export_Form {
  Maildir,  // a file for a message, marks in its name (https://cr.yp.to/proto/maildir.html)
  Mbox,     // a file for a folder, in the form of RFC 4155 with ">From " quoted reversibly ("mboxrd")
  Eml       // a file for a message (RFC 5322), named after its date and subject
};

// An export that cannot go on. The text names the file or folder and suggests what to do.
class Export_Error : public std::exception {
 public:
  explicit Export_Error(std::string text) : text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// All of an item, by EntryID. Throws Automation_Error.
using Read_Item = std::function<New_Item(const std::string& entry_id)>;

// A folder whose items go out.
struct Export_Folder {
  std::vector<std::string> names;  // from below the directory down; at least one
  std::int32_t default_item_type = 0;
  bool is_top = false;  // a store's top folder
  // EntryIDs, in the folder's order. Called once, when the folder's turn has come.
  std::function<std::vector<std::string>()> items;
  Read_Item read;
};

// An item that was found and is not, or not truly, in what was written.
struct Export_Failure {
  std::string where;  // its folder and subject
  std::string why;
};

struct Export_Report {
  std::string directory;
  std::int64_t found = 0;     // always exported + failed
  std::int64_t exported = 0;  // read back, and found to be what they were
  std::int64_t failed = 0;
  std::vector<Export_Failure> failures;
  // The progress callback returned false. What had been written by then stays, and is not counted.
  bool cancelled = false;
  // The error that ended the export on its way, where not empty.
  std::string ended_by;

  bool Is_Whole() const { return failed == 0 && !cancelled && ended_by.empty(); }
};

// "FOUND items found, EXPORTED exported, FAILED failed".
std::string Counts_Of(const Export_Report& report);
// A line for each failure.
std::vector<std::string> Details_Of(const Export_Report& report);

// Gets the number of items written so far and of all. Returns false to cancel. Called on the exporting
// thread, every 10 to 20 ms but while one large item is written.
using Export_Progress = std::function<bool(std::int64_t done, std::int64_t total)>;

struct Export_Options {
  Export_Form form = Export_Form::Maildir;
  // Waits until the disk has what was written.
  bool lasting = false;
  std::int64_t total = 0;    // items, for the progress
  Export_Progress progress;  // may be empty
};

// Whether this build has exporters. Without them, every export is an Export_Error.
bool Can_Export();

// The folder and all that lie below it, parents first; `above` are the names above it in the directory. A
// store's top folder is none of them but where it holds items itself.
std::vector<Export_Folder> Folders_To_Export(const MAPIFolder_Ptr& folder, std::vector<std::string> above,
                                             const Read_Item& read);
// EntryIDs, in the folder's order.
std::vector<std::string> Entry_Ids_Of(MAPIFolder& folder);
// How many items lie in the folder and below it.
std::int64_t Items_In(MAPIFolder& folder);

// Writes the folders into new directories below `directory`, which is made where it is missing. Nothing that
// is there is overwritten or added to: a name that is taken, or that file systems refuse, becomes another
// one. Each folder is read back and compared, item by item. Throws Export_Error where nothing could be
// written.
Export_Report Export_Folders(const std::vector<Export_Folder>& folders,
                             const std::filesystem::path& directory, const Export_Options& options = {});

}  // namespace tidyfold
