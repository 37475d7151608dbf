// The log of runs: what each run was to do, and what became of every item. One SQLite file in the user's
// state folder, which several processes may read and write at the same time.
//
// It can be read after a run was killed. An item is noted and flushed before the store keeps its change; its
// result follows with a later flush. So an item without a result is one of which the log does not know
// whether the change still happened.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "outlook/object_model.h"

namespace tidyfold {

// The log could not be read or written. The text names the file and says what to do about it.
class Run_Log_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// tidyfold/runs.sqlite in $XDG_STATE_HOME or ~/.local/state; on Windows in %LOCALAPPDATA%\Tidyfold. Empty
// where the user has no home.
std::filesystem::path Default_Run_Log_File();

// How many runs are kept; older ones go when a new one begins.
inline constexpr std::int64_t runs_kept = 50;

// The numbers of these enumerations stand in the file.
enum class Item_Action { Moved = 1, Deleted = 2, Folder_Deleted = 3, Put_Back = 4 };
enum class Item_Result {
  Begun = 0,  // may or may not have happened
  Done = 1,
  Failed = 2,
  Changed = 3,  // kept: no longer what was shown
  Declined = 4,
};

struct Logged_Folder {
  std::string store_id, entry_id;
  std::string path;  // below the store's top folder; see outlook/folder_path.h
  std::int32_t item_type = item_type::mail;
};
// Throws Automation_Error where the folder cannot be read.
Logged_Folder Describe_Folder(MAPIFolder& folder);

// For a folder that was deleted `folder` is that folder, `subject` its name, and the rest is empty.
struct Logged_Item {
  std::int64_t number = 0;  // within its run, from 1; given by the log
  Logged_Folder folder;     // where it lay before, or is put back to
  std::string entry_id;
  std::string new_entry_id;  // after a move; empty where it stayed the same
  std::string subject;
  Date date = no_date;  // the item's day, as it was shown
  std::int32_t item_class = 0;
  Item_Action action = Item_Action::Moved;
  Item_Result result = Item_Result::Begun;
  std::string reason;  // why not

  const std::string& Id_After() const { return new_entry_id.empty() ? entry_id : new_entry_id; }
};

struct Logged_Store {
  std::string store_id;
  std::string name;   // of its top folder
  std::string place;  // what opens it again: an absolute path or an address; empty where nothing does
};

// The numbers stand in the file.
enum class Run_Kind { Cleaning = 0, Taking_Back = 1, Putting_Back = 2 };

struct Run_Header {
  Run_Kind kind = Run_Kind::Cleaning;
  std::int64_t undo_of = 0;  // the run that is taken back; 0: none
  std::vector<Logged_Store> stores;
  std::string options;  // in words
  // The plan's numbers.
  std::int64_t items = 0, bytes = 0, folders = 0;
  bool exact = true;
};

struct Run_Outcome {
  std::int64_t processed = 0;
  bool not_all_deleted = false;  // or not everything was put back
  bool cancelled = false;
};

enum class Run_State_In_Log { Under_Way, Ended, Killed };

struct Logged_Run {
  std::int64_t run = 0;  // its number, from 1; never given twice
  Run_Header header;
  Run_State_In_Log state = Run_State_In_Log::Ended;
  std::string began, ended;     // local time, "yyyy-mm-ddThh:mm:ss"; `ended` is empty where it has not
  Run_Outcome outcome;          // before it has ended: `processed` as far as is known
  std::int64_t uncertain = 0;   // items that may or may not have been processed
  std::int64_t taken_back = 0;  // the run that took this one back; 0: none
};

// Everything throws Run_Log_Error where the log cannot be read or written. A log that does not exist is
// empty; the first Begin makes it. All calls come from one thread.
class Run_Log {
 public:
  explicit Run_Log(std::filesystem::path file);
  Run_Log(const Run_Log&) = delete;
  Run_Log& operator=(const Run_Log&) = delete;
  // A run that was begun and not ended counts as killed from then on.
  ~Run_Log();

  const std::filesystem::path& File() const;

  // Writing a run, one at a time. Returns its number.
  std::int64_t Begin(const Run_Header& header, Date now);
  // Notes an item of the run begun; nothing is written before Flush. Returns its number for Set_Result.
  std::int64_t Note(const Logged_Item& item);
  // Once for each item.
  void Set_Result(std::int64_t item, Item_Result result, std::string_view new_entry_id = {},
                  std::string_view reason = {});
  // Writes what has been noted. After a failure it is kept for the next flush.
  void Flush();
  // Flushes, and ends the run.
  void End(const Run_Outcome& outcome, Date now);

  // Newest first.
  std::vector<Logged_Run> Runs();
  std::optional<Logged_Run> Run(std::int64_t run);
  // In the order in which they were noted. The visitor may write to the log.
  void Items(std::int64_t run, const std::function<void(const Logged_Item&)>& visit);
  // Where the newest run that moved this item to Deleted Items took it from. The EntryID is that after the
  // move.
  std::optional<Logged_Item> Find_Moved(const std::string& store_id, const std::string& entry_id);

  // The newest cleaning that has processed something, unless it has been taken back: older ones have to be
  // asked for by number.
  std::optional<Logged_Run> Last_To_Take_Back();
  void Mark_Taken_Back(std::int64_t run, std::int64_t by);

  // Runs that were killed and have not been told yet, newest first.
  std::vector<Logged_Run> Killed_Since_Last_Told();
  void Told(std::int64_t run);

 private:
  class File_Access;
  std::vector<Logged_Run> Read_Runs(const char* which, std::int64_t parameter);

  std::unique_ptr<File_Access> access_;
};

}  // namespace tidyfold
